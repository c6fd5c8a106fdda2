#include "portability/FernwickSSHImporter.h"

#include "support/Integer.h"
#include "support/RecordReader.h"

#include <algorithm>
#include <string>
#include <utility>

namespace fernwick {

namespace {

constexpr std::int64_t kSshPort = 22;
constexpr std::int64_t kKeepAlive = 60; // seconds

// Only English words are compared with it, and none of their letters is the small form of a letter outside
// ASCII.
std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

std::string portText(const std::optional<std::int64_t>& port) {
    return port ? std::to_string(*port) : std::string();
}

// The first forwarding that is switched on decides; the others are left out.
void takeForwarding(const std::vector<TarnlineForwarding>& forwardings, Tunnel& tunnel) {
    const auto usable =
        std::ranges::find_if(forwardings, [](const auto& each) { return each.enabled.value_or(true); });
    tunnel.tunnelType = TunnelType::socks5;
    tunnel.remoteHost.clear();
    if (usable != forwardings.end()) {
        tunnel.localPort = portText(usable->bindPort);
        const auto type = lowerCase(usable->type);
        if (type == "local" || type == "remote") {
            tunnel.tunnelType = type == "local" ? TunnelType::localForward : TunnelType::remoteForward;
            tunnel.remoteHost = usable->hostAddress.value_or("");
            tunnel.remotePort = portText(usable->hostPort);
        }
    }
    if (tunnel.remoteHost.empty()) {
        tunnel.remoteHost = "localhost";
    }
}

void takeOptions(const TarnlineProfile::Options& options, Tunnel& tunnel) {
    const auto keepAlive = options.find("ServerAliveInterval");
    tunnel.keepAliveInterval = keepAlive != options.end()
                                   ? support::parseInteger<std::int64_t>(keepAlive->second).value_or(kKeepAlive)
                                   : kKeepAlive;
    const auto compression = options.find("Compression");
    tunnel.compression = compression != options.end() && lowerCase(compression->second) == "yes";
}

} // namespace

void FernwickSSHImporter::importFile(Completion completion) const {
    const platform::OpenFileRequest request{.title = "Import from Fernwick SSH",
                                            .message = "Chọn file .fernwick export từ Fernwick SSH",
                                            .folder = "",
                                            .kind = platform::FileKind{"Fernwick SSH", {"fernwick", "json"}}};
    dialogs_.openFile(request, [importer = *this, completion = std::move(completion)](const auto& path) {
        completion(importer.readFile(path));
    });
}

FernwickSSHImporter::Result FernwickSSHImporter::readFile(const std::optional<std::string>& path) const {
    if (!path) {
        return std::unexpected(ImportError::cancelled());
    }
    const auto bytes = files_.read(*path);
    if (!bytes) {
        return std::unexpected(ImportError::parseError(bytes.error().description));
    }
    return parse(*bytes);
}

FernwickSSHImporter::Result FernwickSSHImporter::parse(std::string_view data) const {
    const auto file = support::decodeRecord<TarnlineFile>(data);
    if (!file) {
        return std::unexpected(ImportError::invalidFile());
    }
    std::vector<Tunnel> tunnels;
    for (const auto& profile : file->profiles) {
        if (auto tunnel = makeTunnel(profile)) {
            tunnels.push_back(std::move(*tunnel));
        }
    }
    return tunnels;
}

std::optional<Tunnel> FernwickSSHImporter::makeTunnel(const TarnlineProfile& profile) const {
    if (profile.address.empty() || profile.user.empty()) {
        return std::nullopt;
    }
    Tunnel tunnel;
    const auto id = support::Uuid::parse(profile.uuid);
    tunnel.id = id ? *id : support::Uuid::random();
    tunnel.name = profile.name;
    tunnel.host = profile.address;
    tunnel.sshPort = profile.port == kSshPort ? std::string() : std::to_string(profile.port);
    tunnel.user = profile.user;
    takeForwarding(profile.forwardings, tunnel);
    const bool hasKey = profile.privateKeyName && !profile.privateKeyName->empty();
    tunnel.authMethod = hasKey ? AuthMethod::privateKey : AuthMethod::password;
    tunnel.notes = "Imported from Fernwick SSH · key: " + profile.privateKeyName.value_or("none");
    tunnel.reconnectOnFailure = profile.autoConnect.value_or(false) || profile.retryAttempts.value_or(0) > 0;
    takeOptions(profile.options.value_or(TarnlineProfile::Options()), tunnel);
    tunnel.createdAt = clock_.now();
    return tunnel;
}

} // namespace fernwick
