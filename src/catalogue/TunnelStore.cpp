#include "catalogue/TunnelStore.h"

#include "catalogue/StoredList.h"

#include <algorithm>

namespace fernwick {

namespace {

Tunnel sampleTunnel(support::Date now) {
    Tunnel sample;
    sample.id = support::Uuid::random();
    sample.name = "My First Tunnel";
    sample.host = "example.com";
    sample.user = "ubuntu";
    sample.localPort = "8080";
    sample.remotePort = "80";
    sample.notes = "Sample tunnel - edit or delete";
    sample.createdAt = now;
    return sample;
}

} // namespace

TunnelStore::TunnelStore(platform::UserDefaults& defaults, const platform::Clock& clock)
    : defaults_(defaults), clock_(clock) {
    load();
}

void TunnelStore::load() {
    auto stored = readStoredList<Tunnel>(defaults_, kDefaultsKey);
    tunnels_ = stored ? std::move(*stored) : std::vector{sampleTunnel(clock_.now())};
    save();
}

void TunnelStore::save() {
    writeStoredList(defaults_, kDefaultsKey, tunnels_);
}

const Tunnel* TunnelStore::find(const support::Uuid& id) const {
    const auto found = std::ranges::find(tunnels_, id, &Tunnel::id);
    return found != tunnels_.end() ? &*found : nullptr;
}

void TunnelStore::add(Tunnel tunnel) {
    tunnels_.push_back(std::move(tunnel));
    save();
    changed.emit();
}

void TunnelStore::update(const Tunnel& tunnel) {
    const auto found = std::ranges::find(tunnels_, tunnel.id, &Tunnel::id);
    if (found == tunnels_.end()) {
        return;
    }
    *found = tunnel;
    save();
    changed.emit();
}

void TunnelStore::remove(const support::Uuid& id) {
    std::erase_if(tunnels_, [&](const Tunnel& tunnel) { return tunnel.id == id; });
    save();
    changed.emit();
}

void TunnelStore::reload() {
    auto stored = readStoredList<Tunnel>(defaults_, kDefaultsKey);
    if (!stored) {
        return;
    }
    tunnels_ = std::move(*stored);
    save();
    changed.emit();
}

} // namespace fernwick
