// A tunnel as the ssh command that carries it: the real argument list, and the short form that people are
// shown. Both are pure functions that never fail; what a field holds reaches ssh as it is, and ssh reports what
// it dislikes.
#pragma once

#include "catalogue/Tunnel.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

// The program that carries every tunnel.
inline constexpr std::string_view kSshProgram = "/usr/bin/ssh";

// What is known about a tunnel's identity key at the moment of a launch.
struct KeyFacts {
    std::optional<std::string> path; // of the private key file, if the key is in the list
    bool hasStoredPassphrase = false;

    bool operator==(const KeyFacts&) const = default;
};

// The argument list for the child process, without the program itself. There is no shell in between, so nothing
// is quoted or escaped. Options: ssh(1), ssh_config(5).
[[nodiscard]] std::vector<std::string> buildSSHArguments(const Tunnel& tunnel, const KeyFacts& key);

// A summary of the command for a human: no "-o" options, no "-C", no "-i", ports as typed.
[[nodiscard]] std::string buildPreviewCommand(const Tunnel& tunnel);

} // namespace fernwick
