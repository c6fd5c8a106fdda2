// What the proxy engine is doing right now. Not persisted.
#pragma once

#include <string>
#include <utility>

namespace fernwick {

class ClashEngineStatus {
public:
    enum class Kind { error, stopped, starting, running };

    ClashEngineStatus() = default;
    static ClashEngineStatus error(std::string message) {
        return ClashEngineStatus(Kind::error, std::move(message));
    }
    static ClashEngineStatus stopped() { return ClashEngineStatus(Kind::stopped); }
    static ClashEngineStatus starting() { return ClashEngineStatus(Kind::starting); }
    static ClashEngineStatus running() { return ClashEngineStatus(Kind::running); }

    [[nodiscard]] Kind kind() const { return kind_; }

    // The message of an error, else empty.
    [[nodiscard]] const std::string& message() const { return message_; }

    bool operator==(const ClashEngineStatus&) const = default;

private:
    explicit ClashEngineStatus(Kind kind, std::string message = {})
        : kind_(kind), message_(std::move(message)) {}

    Kind kind_ = Kind::stopped;
    std::string message_;
};

} // namespace fernwick
