#include "tunnel/AskpassScripts.h"

#include "support/Base64.h"
#include "support/Uuid.h"

#include <utility>

namespace fernwick {

namespace {

// The script's text. It is made in one buffer of its final size, so that no copy of the secret is left behind.
std::string scriptText(const support::Secret& secret) {
    constexpr std::string_view kBefore = "#!/bin/sh\nprintf '%s' \"$(echo '";
    constexpr std::string_view kAfter = "' | base64 --decode)\"\n";
    std::string text;
    text.reserve(kBefore.size() + support::base64Size(secret.text().size()) + kAfter.size());
    text += kBefore;
    support::appendBase64(text, secret.text());
    text += kAfter;
    return text;
}

} // namespace

AskpassScripts::AskpassScripts(platform::Dispatch& dispatch, platform::FileSystem& files,
                               const platform::HostEnvironment& host, std::function<void(std::string)> failed)
    : dispatch_(dispatch), files_(files), host_(host), failed_(std::move(failed)) {}

std::string AskpassScripts::createAskpassScript(const support::Secret& secret) const {
    auto path = host_.temporaryFolder() + "/lm_askpass_" + support::Uuid::random().text() + ".sh";
    auto text = scriptText(secret);
    const auto written = files_.write(path, text, platform::kOwnerOnlyProgram);
    support::wipe(text);
    if (!written) {
        failed_("⚠ Không tạo được askpass script: " + written.error().description);
    }
    dispatch_.globalAfter(platform::Priority::normal, kLifetime, [&files = files_, path] {
        // Whoever removed it before has done what was to be done.
        (void)files.remove(path);
    });
    return path;
}

} // namespace fernwick
