#include "KeychainContract.h"
#include "support/FakeKeychain.h"

namespace fernwick::platform {

namespace {

struct FakeKeychainHarness {
    Keychain& keychain() { return fake; }
    fakes::FakeKeychain fake;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, KeychainContract, FakeKeychainHarness);

} // namespace fernwick::platform
