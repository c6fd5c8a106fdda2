// Weak references to long-lived owners, for closures that are queued and may run after their owner is gone.
// Threads: made, copied and destroyed anywhere; looked into only on the thread that destroys the owner.
#pragma once

#include <memory>

namespace fernwick::support {

// What a queued closure holds instead of its owner.
template <class T>
class Weak {
public:
    Weak() = default;

    // The owner, or null when it is gone.
    [[nodiscard]] T* get() const {
        const auto strong = owner_.lock();
        return strong ? *strong : nullptr;
    }

    // Whether the owner is gone. Any thread; elsewhere than on the owner's it may go at any moment.
    [[nodiscard]] bool expired() const { return owner_.expired(); }

private:
    template <class U>
    friend class WeakSource;
    explicit Weak(std::weak_ptr<T*> owner) : owner_(std::move(owner)) {}

    std::weak_ptr<T*> owner_;
};

// A member of the owner, declared last so that it goes first: it hands out weak references to the owner.
template <class T>
class WeakSource {
public:
    explicit WeakSource(T& owner) : self_(std::make_shared<T*>(&owner)) {}
    WeakSource(const WeakSource&) = delete;
    WeakSource& operator=(const WeakSource&) = delete;
    ~WeakSource() = default;

    [[nodiscard]] Weak<T> weak() const { return Weak<T>(self_); }

private:
    std::shared_ptr<T*> self_;
};

} // namespace fernwick::support
