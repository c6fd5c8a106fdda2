// The short-lived scripts that hand a secret to ssh, which has no terminal to ask on (SSH_ASKPASS in ssh(1)). A
// secret thus never stands in an argument or in a variable. base64 only keeps its characters out of the shell's
// reach; what protects it is the file's mode and its short life.
// Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "platform/FileSystem.h"
#include "platform/HostEnvironment.h"
#include "support/Secret.h"

#include <functional>
#include <string>

namespace fernwick {

class AskpassScripts {
public:
    // How long a script lives; longer than ssh waits for a connection.
    static constexpr platform::Duration kLifetime{30'000};

    // `failed` is told, in a sentence, when a script could not be written. Everything given outlives what this
    // object has queued.
    AskpassScripts(platform::Dispatch& dispatch, platform::FileSystem& files,
                   const platform::HostEnvironment& host, std::function<void(std::string)> failed);

    // Writes a script of its own for the secret, plans its removal, and returns its path, which leads to
    // nothing when it could not be written.
    [[nodiscard]] std::string createAskpassScript(const support::Secret& secret) const;

private:
    platform::Dispatch& dispatch_;
    platform::FileSystem& files_;
    const platform::HostEnvironment& host_;
    std::function<void(std::string)> failed_;
};

} // namespace fernwick
