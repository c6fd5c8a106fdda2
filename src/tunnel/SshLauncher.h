// Composes the ssh child of a tunnel anew for each launch: environment, credentials and arguments. An edit to a
// tunnel or a key therefore takes effect at the next launch. Threads: main thread only.
#pragma once

#include "catalogue/Tunnel.h"
#include "platform/ChildProcess.h"
#include "platform/HostEnvironment.h"
#include "platform/UserDefaults.h"
#include "tunnel/SshCommand.h"
#include "tunnel/TunnelLogs.h"

namespace fernwick {

class SshLauncher {
public:
    SshLauncher(const platform::HostEnvironment& host, const platform::UserDefaults& defaults,
                TunnelLogs& logs);

    // The child to start, with what is worth telling about it written to the tunnel's log. No argument and no
    // variable of it ever holds a secret.
    [[nodiscard]] platform::ProcessRequest compose(const Tunnel& tunnel) const;

    // What is known of the tunnel's key: read straight from the stored list of keys, as it was last saved. For
    // a tunnel that uses no key of the list, nothing.
    [[nodiscard]] KeyFacts lookUpKeyFacts(const Tunnel& tunnel) const;

private:
    [[nodiscard]] platform::Environment childEnvironment(const Tunnel& tunnel) const;
    [[nodiscard]] std::string workingFolder(const Tunnel& tunnel) const;
    void announceCredentials(const Tunnel& tunnel) const;

    const platform::HostEnvironment& host_;
    const platform::UserDefaults& defaults_;
    TunnelLogs& logs_;
};

} // namespace fernwick
