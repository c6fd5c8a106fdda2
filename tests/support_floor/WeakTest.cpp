#include "support/Weak.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace fernwick::support {
namespace {

struct Owner {
    int calls = 0;
    WeakSource<Owner> self{*this};
};

TEST(Weak, FindsItsOwnerWhileItLives) {
    Owner owner;
    EXPECT_EQ(owner.self.weak().get(), &owner);
}

TEST(Weak, FindsNothingWhenItsOwnerIsGone) {
    Weak<Owner> weak;
    {
        const Owner owner;
        weak = owner.self.weak();
        ASSERT_EQ(weak.get(), &owner);
    }
    EXPECT_EQ(weak.get(), nullptr);
}

TEST(Weak, OfNobodyFindsNothing) {
    EXPECT_EQ(Weak<Owner>{}.get(), nullptr);
}

TEST(Weak, QueuedClosuresQuitWhenTheOwnerIsGone) {
    std::vector<std::function<void()>> queue;
    int calls = 0;
    const auto drain = [&] {
        for (const auto& closure : queue) {
            closure();
        }
    };
    {
        Owner owner;
        queue.emplace_back([weak = owner.self.weak(), &calls] {
            if (auto* const self = weak.get()) {
                calls += ++self->calls;
            }
        });
        drain();
    }
    drain();
    EXPECT_EQ(calls, 1);
}

// Tells, when it is destroyed, whether its owner can still be found.
template <class T>
struct Probe {
    Weak<T> weak;
    bool* found = nullptr;

    Probe() = default;
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    ~Probe() { *found = weak.get() != nullptr; }
};

TEST(Weak, FindsNothingWhileTheOwnersMembersAreDestroyed) {
    struct Probed {
        Probe<Probed> probe;
        WeakSource<Probed> self{*this};
    };
    bool found = true;
    {
        Probed probed;
        probed.probe.weak = probed.self.weak();
        probed.probe.found = &found;
    }
    EXPECT_FALSE(found);
}

} // namespace
} // namespace fernwick::support
