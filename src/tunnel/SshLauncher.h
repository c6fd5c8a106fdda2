// Composes the ssh child of a tunnel anew for each launch: environment, credentials and arguments. An edit to a
// tunnel or a key therefore takes effect at the next launch. Threads: main thread only.
#pragma once

#include "catalogue/KeychainStore.h"
#include "catalogue/Tunnel.h"
#include "platform/ChildProcess.h"
#include "platform/HostEnvironment.h"
#include "platform/UserDefaults.h"
#include "tunnel/AskpassScripts.h"
#include "tunnel/SshCommand.h"
#include "tunnel/TunnelLogs.h"

namespace fernwick {

class SshLauncher {
public:
    // Everything given outlives the launcher.
    SshLauncher(const platform::HostEnvironment& host, const platform::UserDefaults& defaults,
                const KeychainStore& keychain, AskpassScripts scripts, TunnelLogs& logs);

    // The child to start, with what is worth telling about it written to the tunnel's log. No argument and no
    // variable of it ever holds a secret; where one is stored, a script that the child may call prints it.
    [[nodiscard]] platform::ProcessRequest compose(const Tunnel& tunnel) const;

    // What is known of the tunnel's key: read straight from the stored list of keys, as it was last saved. For
    // a tunnel that uses no key of the list, nothing.
    [[nodiscard]] KeyFacts lookUpKeyFacts(const Tunnel& tunnel) const;

private:
    [[nodiscard]] platform::Environment childEnvironment(const Tunnel& tunnel) const;
    [[nodiscard]] std::string workingFolder(const Tunnel& tunnel) const;
    [[nodiscard]] std::optional<support::Secret> credentials(const Tunnel& tunnel) const;

    const platform::HostEnvironment& host_;
    const platform::UserDefaults& defaults_;
    const KeychainStore& keychain_;
    AskpassScripts scripts_;
    TunnelLogs& logs_;
};

} // namespace fernwick
