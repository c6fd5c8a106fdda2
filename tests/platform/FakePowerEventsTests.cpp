#include "PowerEventsContract.h"
#include "support/FakePlatform.h"

namespace fernwick::platform {

namespace {

struct FakePowerHarness {
    PowerEvents& events() { return fake; }
    void sleep() const { fake.willSleep.emit(); }
    void wake() const { fake.didWake.emit(); }
    template <class Condition>
    bool waitUntil(Condition condition) {
        return condition();
    }

    fakes::FakePowerEvents fake;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, PowerEventsContract, FakePowerHarness);

} // namespace fernwick::platform
