#include "SingleInstanceContract.h"
#include "support/FakeSingleInstance.h"

namespace fernwick::platform {

namespace {

struct FakeInstanceHarness {
    std::unique_ptr<SingleInstance> make() { return std::make_unique<fakes::FakeSingleInstance>(session); }
    SingleInstance::Claim claimElsewhere(SingleInstance::Start start = SingleInstance::Start::shown) {
        return make()->claim(start);
    }
    std::shared_ptr<fakes::FakeSingleInstance::Session> session =
        std::make_shared<fakes::FakeSingleInstance::Session>();
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, SingleInstanceContract, FakeInstanceHarness);

} // namespace fernwick::platform
