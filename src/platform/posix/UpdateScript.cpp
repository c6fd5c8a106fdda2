#include "platform/posix/UpdateScript.h"

namespace fernwick::platform {

namespace {

constexpr std::string_view kTarget = "`T`";

constexpr const char* kWaiting = R"(#!/bin/bash
exec > /tmp/fernwick_update.log 2>&1
echo "[$(date)] Update script started"
echo "PID: $$"

echo "Waiting for app to close..."
sleep 3

# Verify app has quit
while pgrep -x "Fernwick" > /dev/null 2>&1; do
    echo "App still running, waiting..."
    sleep 1
done

echo "Deleting old app at: `T`"
rm -rf "`T`"

echo "Copying new app from: )";

// The text with each mark replaced.
std::string withTarget(std::string_view text, std::string_view target) {
    std::string result;
    for (auto mark = text.find(kTarget); mark != std::string_view::npos; mark = text.find(kTarget)) {
        result.append(text.substr(0, mark)).append(target);
        text.remove_prefix(mark + kTarget.size());
    }
    return result.append(text);
}

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += line + "\n";
    }
    return text;
}

} // namespace

std::string updateScript(const UpdateScriptParts& parts) {
    const std::string target(parts.target);
    const std::string source(parts.source);
    return withTarget(kWaiting, target) + source + "\"\ncp -R \"" + source + "\" \"" + target + "\"\n\n" +
           joined(parts.preparing) + "\n" + joined(parts.registering) + "\necho \"Reopening...\"\nsleep 1\n\n" +
           joined(parts.definitions) + "# Retry open up to 3 times\nfor i in 1 2 3; do\n    " + parts.opening +
           " && break\n"
           "    echo \"Open attempt $i failed, retrying in 2s...\"\n    sleep 2\ndone\n\n"
           "echo \"[$(date)] Update finished!\"";
}

} // namespace fernwick::platform
