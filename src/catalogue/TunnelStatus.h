// What a tunnel is doing right now. Not persisted.
#pragma once

#include <string>
#include <utility>

namespace fernwick {

class TunnelStatus {
public:
    enum class Kind { idle, connecting, connected, disconnected, error };

    TunnelStatus() = default;
    static TunnelStatus idle() { return TunnelStatus(Kind::idle); }
    static TunnelStatus connecting() { return TunnelStatus(Kind::connecting); }
    static TunnelStatus connected() { return TunnelStatus(Kind::connected); }
    static TunnelStatus disconnected() { return TunnelStatus(Kind::disconnected); }
    static TunnelStatus error(std::string message) { return TunnelStatus(Kind::error, std::move(message)); }

    [[nodiscard]] Kind kind() const { return kind_; }

    // The message of an error, else empty.
    [[nodiscard]] const std::string& message() const { return message_; }

    // Whether a start/stop toggle stops the tunnel (true) or starts it.
    [[nodiscard]] bool isActive() const { return kind_ == Kind::connecting || kind_ == Kind::connected; }

    // The text on screen, e.g. "Connecting...".
    [[nodiscard]] std::string statusText() const {
        switch (kind_) {
        case Kind::idle:
            return "Idle";
        case Kind::connecting:
            return "Connecting...";
        case Kind::connected:
            return "Connected";
        case Kind::disconnected:
            return "Disconnected";
        case Kind::error:
            break;
        }
        return "Error: " + message_;
    }

    bool operator==(const TunnelStatus&) const = default;

private:
    explicit TunnelStatus(Kind kind, std::string message = {}) : kind_(kind), message_(std::move(message)) {}

    Kind kind_ = Kind::idle;
    std::string message_;
};

} // namespace fernwick
