#include "FakeHarness.h"
#include "FileDefaultsHarness.h"
#include "UserDefaultsContract.h"
#include "support/FakeUserDefaults.h"

namespace fernwick::platform {

namespace {

struct FakeDefaultsHarness {
    std::unique_ptr<UserDefaults> open(std::string_view domain) { return provider.open(domain); }
    std::optional<PropertyDictionary> read(std::string_view domain) { return provider.read(domain); }
    void makeUnreadable(const std::string& domain) { provider.disk().unreadable.insert(domain); }
    void setFailing(bool failing) { provider.disk().failing = failing; }
    fakes::FakeUserDefaultsProvider provider;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, UserDefaultsContract, FakeDefaultsHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(File, UserDefaultsContract, FileDefaultsHarness<FakeHarness>);

TEST(FakeUserDefaults, RecordsChangesInOrder) {
    fakes::FakeUserDefaults defaults;
    defaults.setData("a", "1");
    defaults.remove("missing");
    defaults.remove("a");
    EXPECT_EQ(defaults.changes(), (std::vector<std::string>{"a", "a"}));
    EXPECT_EQ(defaults.disk().writes, 2U);
}

} // namespace fernwick::platform
