#include "screens/detail/TunnelBinding.h"

namespace fernwick {

void TunnelBinding::setTunnel(const Tunnel& tunnel) {
    if (tunnel == value_) {
        return;
    }
    value_ = tunnel;
    changed.emit();
}

void TunnelBinding::edit(const support::Uuid& id, const std::function<void(Tunnel&)>& change) {
    const Tunnel* stored = store_.find(id);
    if (stored == nullptr) {
        return;
    }
    Tunnel edited = *stored;
    change(edited);
    if (edited == *stored) {
        return;
    }
    const bool shown = id == value_.id;
    if (shown) {
        value_ = edited;
    }
    store_.update(edited);
    if (shown) {
        changed.emit();
    }
}

} // namespace fernwick
