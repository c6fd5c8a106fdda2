// The preferences in files with a real writing thread behind them.
#include "FileDefaultsHarness.h"
#include "QtHarness.h"
#include "UserDefaultsContract.h"

namespace fernwick::platform {

INSTANTIATE_TYPED_TEST_SUITE_P(FileOnThread, UserDefaultsContract, FileDefaultsHarness<QtHarness>);

TEST(FileUserDefaults, ManyChangesInARowEndInTheNewestState) {
    FileDefaultsHarness<QtHarness> harness;
    {
        const auto defaults = harness.open("com.example.Contract");
        for (std::int64_t number = 0; number < 2000; ++number) {
            defaults->set("number", {number});
        }
    }
    EXPECT_EQ(harness.open("com.example.Contract")->value("number"), PropertyValue{std::int64_t{1999}});
}

} // namespace fernwick::platform
