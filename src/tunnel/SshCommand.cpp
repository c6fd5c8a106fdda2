#include "tunnel/SshCommand.h"

#include "support/Text.h"

#include <fmt/format.h>

namespace fernwick {

namespace {

using Arguments = std::vector<std::string>;

void appendOption(Arguments& arguments, std::string option) {
    arguments.emplace_back("-o");
    arguments.push_back(std::move(option));
}

std::string_view orElse(std::string_view text, std::string_view fallback) {
    return text.empty() ? fallback : text;
}

void appendAuthentication(Arguments& arguments, const Tunnel& tunnel, const KeyFacts& key) {
    switch (tunnel.authMethod) {
    case AuthMethod::password:
        appendOption(arguments, "PreferredAuthentications=password");
        appendOption(arguments, "PubkeyAuthentication=no");
        appendOption(arguments, "IdentityAgent=none");
        break;
    case AuthMethod::privateKey:
        // Without a passphrase at hand nobody could answer ssh's question, so it must not ask.
        if (tunnel.identityKeyID && !key.hasStoredPassphrase) {
            appendOption(arguments, "BatchMode=yes");
        }
        appendOption(arguments, "IdentityAgent=none");
        break;
    case AuthMethod::agent:
        appendOption(arguments, "BatchMode=yes");
        appendOption(arguments, "IdentityAgent=default");
        break;
    }
}

void appendForward(Arguments& arguments, const Tunnel& tunnel) {
    if (support::trimBlanks(tunnel.localPort).empty()) {
        return;
    }
    appendOption(arguments, "ExitOnForwardFailure=yes");
    const auto port = orElse(tunnel.remotePort, tunnel.localPort);
    switch (tunnel.tunnelType) {
    case TunnelType::localForward:
        arguments.emplace_back("-L");
        arguments.push_back(
            fmt::format("127.0.0.1:{}:{}:{}", tunnel.localPort, orElse(tunnel.remoteHost, "localhost"), port));
        break;
    case TunnelType::remoteForward:
        arguments.emplace_back("-R");
        arguments.push_back(fmt::format("{}:localhost:{}", port, tunnel.localPort));
        break;
    case TunnelType::socks5:
    case TunnelType::dynamicForward:
        arguments.emplace_back("-D");
        arguments.push_back(fmt::format("127.0.0.1:{}", tunnel.localPort));
        break;
    }
}

std::string previewForward(const Tunnel& tunnel) {
    switch (tunnel.tunnelType) {
    case TunnelType::localForward:
        return fmt::format(" -L 127.0.0.1:{}:{}:{}", tunnel.localPort, orElse(tunnel.remoteHost, "localhost"),
                           tunnel.remotePort);
    case TunnelType::remoteForward:
        return fmt::format(" -R {}:localhost:{}", tunnel.remotePort, tunnel.localPort);
    case TunnelType::socks5:
    case TunnelType::dynamicForward:
        break;
    }
    return fmt::format(" -D 127.0.0.1:{}", tunnel.localPort);
}

} // namespace

std::vector<std::string> buildSSHArguments(const Tunnel& tunnel, const KeyFacts& key) {
    Arguments arguments{"-N"};
    appendOption(arguments, fmt::format("ServerAliveInterval={}", tunnel.keepAliveInterval));
    appendOption(arguments, "ServerAliveCountMax=3");
    appendOption(arguments, "ConnectTimeout=15");
    appendOption(arguments, "StrictHostKeyChecking=accept-new");
    appendAuthentication(arguments, tunnel, key);
    if (tunnel.compression) {
        arguments.emplace_back("-C");
    }
    if (const auto port = support::trimBlanks(tunnel.sshPort); !port.empty()) {
        arguments.emplace_back("-p");
        arguments.emplace_back(port);
    }
    // The jump host goes out as typed, blanks included, unlike the port above.
    if (!support::trimBlanks(tunnel.jumpHost).empty()) {
        arguments.emplace_back("-J");
        arguments.push_back(tunnel.jumpHost);
    }
    appendForward(arguments, tunnel);
    if (tunnel.authMethod == AuthMethod::privateKey && tunnel.identityKeyID && key.path) {
        arguments.emplace_back("-i");
        arguments.push_back(*key.path);
    }
    arguments.push_back(tunnel.user + "@" + tunnel.host);
    return arguments;
}

std::string buildPreviewCommand(const Tunnel& tunnel) {
    auto preview = fmt::format("{} -N", kSshProgram);
    if (const auto port = support::trimBlanks(tunnel.sshPort); !port.empty()) {
        preview += fmt::format(" -p {}", port);
    }
    if (!tunnel.localPort.empty()) {
        preview += previewForward(tunnel);
    }
    if (!tunnel.jumpHost.empty()) {
        preview += " -J " + tunnel.jumpHost;
    }
    return preview + " " + tunnel.user + "@" + tunnel.host;
}

} // namespace fernwick
