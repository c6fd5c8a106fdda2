// Signals: how observable state tells its readers that it changed.
// Threads: a signal and its subscriptions live on one thread, in this application the main one.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace fernwick::support {

// Whether one listener still wants to be called.
struct SignalSlot {
    virtual ~SignalSlot() = default;
    // Ends the subscription; the handler's captures are released as soon as it is not running.
    virtual void disconnect() = 0;
};

// The handle of one listener. Unsubscribes in its destructor; may outlive the signal.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::shared_ptr<SignalSlot> slot) : slot_(std::move(slot)) {}
    Subscription(Subscription&& other) noexcept = default;
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            reset();
            slot_ = std::move(other.slot_);
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { reset(); }

    // Unsubscribes now. Calling it again does nothing.
    void reset() {
        if (auto slot = std::exchange(slot_, nullptr)) {
            slot->disconnect();
        }
    }

private:
    std::shared_ptr<SignalSlot> slot_;
};

// A list of listeners, called in the order of subscription. A listener may subscribe, unsubscribe (itself
// included) and emit again while it is called: a listener added during an emission is first called by the next
// one, a removed one is not called any more.
template <class... Args>
class Signal {
public:
    using Handler = std::function<void(Args...)>;

    Signal() = default;
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() = default;

    // Adds a listener. It is called until the returned subscription is destroyed.
    Subscription connect(Handler handler) {
        std::erase_if(slots_, [](const auto& slot) { return !slot->connected; });
        auto slot = std::make_shared<Slot>();
        slot->handler = std::move(handler);
        slots_.push_back(slot);
        return Subscription(std::move(slot));
    }

    // Calls every listener with the arguments.
    void emit(Args... args) const {
        const auto called = slots_;
        for (const auto& slot : called) {
            if (slot->connected) {
                slot->call(args...);
            }
        }
    }

private:
    struct Slot final : SignalSlot {
        Handler handler;
        bool connected = true;
        int running = 0;

        void call(const Args&... args) {
            ++running;
            handler(args...);
            if (--running == 0 && !connected) {
                handler = nullptr;
            }
        }
        void disconnect() override {
            connected = false;
            if (running == 0) {
                handler = nullptr;
            }
        }
    };

    std::vector<std::shared_ptr<Slot>> slots_;
};

} // namespace fernwick::support
