#include "platform/linux/LinuxUpdate.h"

#include "platform/posix/ShellWord.h"
#include "platform/posix/UpdateScript.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>

namespace fernwick::platform {

namespace {

// Whether a shell could have a variable of that name (POSIX.1, "Environment Variables"). Others are bash's
// functions, and what env(1) would take for an option.
bool isVariableName(std::string_view name) {
    const auto fits = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    };
    return !name.empty() && !(name.front() >= '0' && name.front() <= '9') && std::ranges::all_of(name, fits);
}

// What the script of root's needs to run a command as the person: the environment as lines of a shell, and the
// words before the command. The lines come by descriptor 3, since everybody may read a process's arguments.
std::vector<std::string> personLines(const UpdatePerson& person) {
    std::string lines;
    for (const auto& [name, value] : person.environment) {
        if (isVariableName(name)) {
            lines += "export " + shellWord(name + "=" + value) + "\n";
        }
    }
    return {"environment=" + shellWord(lines),
            "person=(setpriv --reuid=" + std::to_string(person.user) +
                " --regid=" + std::to_string(person.group) + " --init-groups env -i",
            R"x(    /bin/bash -c 'eval "$(cat <&3)"; exec "$@" 3<&-' bash))x"};
}

} // namespace

std::string linuxUpdateScript(const UpdateSwap& swap, const std::optional<UpdatePerson>& person) {
    const std::string before = person ? R"("${person[@]}" )" : "";
    const std::string behind = person ? R"(3<<< "$environment" )" : "";
    std::vector<std::string> preparing{
        "echo \"Making the program executable...\"", "program=\"" + swap.target + "\"",
        "[ -d \"$program\" ] && program=\"$program/Fernwick\"", "chmod 755 \"$program\""};
    if (person) {
        // The files are root's now, and the person's mask may have kept them from everybody else.
        preparing.push_back("chmod -R a+rX \"" + swap.target + "\"");
    }
    std::vector<std::string> registering{"echo \"Registering with the desktop...\""};
    if (person) {
        std::ranges::move(personLines(*person), std::back_inserter(registering));
    }
    registering.push_back(
        before + "sh -c 'update-desktop-database \"${XDG_DATA_HOME:-$HOME/.local/share}/applications\"' " +
        behind + "> /dev/null 2>&1");
    return updateScript(
        {.target = swap.target,
         .source = swap.source,
         .preparing = std::move(preparing),
         .registering = std::move(registering),
         .definitions =
             {"# In a session of its own; the script's background has INT and QUIT ignored, nohup HUP",
              "start() {",
              "    (cd / && exec setsid " + before + "env --default-signal=HUP,INT,QUIT \"$program\" " +
                  behind + "< /dev/null > /dev/null 2>&1) &",
              "    sleep 1", "    kill -0 $! 2> /dev/null || wait $!", "}", ""},
         .opening = "start"});
}

CommandRequest LinuxUpdate::unpacking(const std::string& archive, const std::string& folder) const {
    // With a password it does not ask for one, which it would do on the terminal, and wait.
    return {.executable = "/usr/bin/bsdtar",
            .arguments = {"-x", "--no-same-owner", "--no-same-permissions", "--no-acls", "--no-fflags",
                          "--no-xattrs", "--passphrase", "none", "-f", archive, "-C", folder}};
}

std::string LinuxUpdate::script(const UpdateSwap& swap) const {
    return linuxUpdateScript(
        swap,
        swap.asAdministrator
            ? std::optional(UpdatePerson{.user = getuid(), .group = getgid(), .environment = host_.variables()})
            : std::nullopt);
}

std::expected<void, AdministratorError> LinuxUpdate::startAsAdministrator(const std::string& scriptPath) {
    // Of another user's log in /tmp, the kernel lets not even root write to it (fs.protected_regular, proc(5));
    // and a link there would lead root anywhere.
    return shell_.run("rm -f /tmp/fernwick_update.log; nohup " + shellWord(scriptPath) + " > /dev/null 2>&1 &");
}

} // namespace fernwick::platform
