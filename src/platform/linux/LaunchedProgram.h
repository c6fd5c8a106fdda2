// Finds the program that a desktop entry's command is about, behind those that merely start another one.
// Pure: looks at no file. Threads: any.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

struct LaunchedProgram {
    std::string program; // a path, or a name to be looked for on PATH
    bool isSandboxed =
        false; // it lies in a sandbox: `program` is its name, and no file out here has to do with it

    bool operator==(const LaunchedProgram&) const = default;
};

// What runs in the end. Seen through are `env` with its options and variables, `sh -c` (the first command that
// is not the shell's own), a shell with a script, launchers such as `nice`, `pkexec` and `prime-run`, and
// `flatpak run`: what it is told to run, else the last part of the application's id in lower case, which is a
// guess. Absent when nothing is left, or when that can only be known by running it.
[[nodiscard]] std::optional<LaunchedProgram> launchedProgram(std::vector<std::string> command);

// What stands behind the last slash.
[[nodiscard]] std::string_view baseName(std::string_view path);

// Whether this is the name of a shell.
[[nodiscard]] bool isShell(std::string_view name);

} // namespace fernwick::platform
