// The chosen tunnel as its editors see it: read here, and written through to the store at once, one field at a
// time, so that what others changed meanwhile stays. Threads: main thread only.
#pragma once

#include "catalogue/TunnelStore.h"
#include "support/Signal.h"

#include <functional>
#include <type_traits>
#include <utility>

namespace fernwick {

class TunnelBinding {
public:
    // The store outlives the binding.
    explicit TunnelBinding(TunnelStore& store) : store_(store) {}
    TunnelBinding(const TunnelBinding&) = delete;
    TunnelBinding& operator=(const TunnelBinding&) = delete;
    ~TunnelBinding() = default;

    // The tunnel as it was last shown or written.
    [[nodiscard]] const Tunnel& value() const { return value_; }

    // Shows a tunnel: another one, or the same in the state that the store has now.
    void setTunnel(const Tunnel& tunnel);

    // Writes one field of the tunnel on show.
    template <class Value>
    void write(Value Tunnel::* field, std::type_identity_t<Value> value) {
        edit(value_.id, [&](Tunnel& tunnel) { tunnel.*field = std::move(value); });
    }

    // Changes the tunnel with that id as the store has it, and saves. A tunnel that is gone, and a change that
    // changes nothing, are not saved.
    void edit(const support::Uuid& id, const std::function<void(Tunnel&)>& change);

    // Emitted after the tunnel on show became another one or was changed, be it here or elsewhere.
    support::Signal<> changed;

private:
    TunnelStore& store_;
    Tunnel value_;
};

} // namespace fernwick
