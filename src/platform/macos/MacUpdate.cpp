#include "platform/macos/MacUpdate.h"

#include "platform/posix/UpdateScript.h"

namespace fernwick::platform {

CommandRequest macUnpacking(const std::string& archive, const std::string& folder) {
    return {.executable = "/usr/bin/ditto", .arguments = {"-x", "-k", archive, folder}};
}

std::string macUpdateScript(std::string_view target, std::string_view source) {
    const auto quoted = "\"" + std::string(target) + "\"";
    return updateScript({.target = target,
                         .source = source,
                         .preparing = {"echo \"Removing quarantine...\"", "xattr -cr " + quoted},
                         .registering = {"echo \"Registering with LaunchServices...\"",
                                         "/System/Library/Frameworks/CoreServices.framework/Versions/Current/"
                                         "Frameworks/LaunchServices.framework/Versions/Current/Support/"
                                         "lsregister -f " +
                                             quoted + " 2>/dev/null"},
                         .definitions = {},
                         .opening = "open " + quoted});
}

std::string macUpdateAppleScript(std::string_view scriptPath) {
    return "do shell script \"nohup \" & quoted form of \"" + std::string(scriptPath) +
           "\" & \" > /dev/null 2>&1 &\" with administrator privileges";
}

} // namespace fernwick::platform
