#include "screens/menubar/TunnelTally.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace fernwick {

namespace {

bool isActive(TunnelStatus::Kind kind) {
    return kind == TunnelStatus::Kind::connecting || kind == TunnelStatus::Kind::connected;
}

} // namespace

TunnelTally::TunnelTally(TunnelStore& store, TunnelManager& tunnels, platform::Dispatch& dispatch)
    : store_(store), tunnels_(tunnels), countSoon_(dispatch, [this] { count(); }) {
    subscriptions_.push_back(store.changed.connect([this] {
        storeTouched_ = true;
        countSoon_.request();
    }));
    subscriptions_.push_back(tunnels.statusChanged.connect([this](const support::Uuid& id) {
        touched_.insert(id);
        countSoon_.request();
    }));
    count();
}

std::string TunnelTally::summaryText() const {
    if (counts_.active == 0) {
        return "No active tunnels";
    }
    if (counts_.active == counts_.total) {
        return "All tunnels connected";
    }
    return std::to_string(counts_.active) + "/" + std::to_string(counts_.total) + " connected";
}

void TunnelTally::count() {
    const Counts before = counts_;
    // The store also announces what is no change of the list, and far more often.
    if (std::exchange(storeTouched_, false) &&
        !std::ranges::equal(ids_, store_.tunnels(), {}, {}, &Tunnel::id)) {
        countAll();
    } else {
        std::ranges::for_each(touched_, [this](const auto& id) { countStatus(id); });
    }
    touched_.clear();
    if (counts_ != before) {
        changed.emit();
    }
}

void TunnelTally::countAll() {
    ids_.clear();
    counted_.clear();
    std::ranges::transform(store_.tunnels(), std::back_inserter(ids_), &Tunnel::id);
    counts_ = {.total = ids_.size()};
    for (const auto& id : ids_) {
        ++counted_[id].tunnels;
    }
    for (const auto& [id, counted] : counted_) {
        countStatus(id);
    }
}

void TunnelTally::countStatus(const support::Uuid& id) {
    const auto found = counted_.find(id);
    if (found == counted_.end()) {
        return;
    }
    auto& [tunnels, kind] = found->second;
    const auto now = kindOf(id);
    counts_.active -= isActive(kind) ? tunnels : 0;
    counts_.failed -= kind == TunnelStatus::Kind::error ? tunnels : 0;
    counts_.active += isActive(now) ? tunnels : 0;
    counts_.failed += now == TunnelStatus::Kind::error ? tunnels : 0;
    kind = now;
}

TunnelStatus::Kind TunnelTally::kindOf(const support::Uuid& id) const {
    return tunnels_.status(id).value_or(TunnelStatus::idle()).kind();
}

} // namespace fernwick
