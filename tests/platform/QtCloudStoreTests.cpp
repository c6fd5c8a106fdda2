#include "CloudFolderHarness.h"
#include "CloudStoreContract.h"
#include "QtHarness.h"
#include "support/StuckDisk.h"

namespace fernwick::platform {

namespace {

using QtCloudHarness = CloudFolderHarness<QtHarness>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(QtFolder, CloudStoreContract, QtCloudHarness);

TEST(QtCloudStore, StuckDiskHoldsUpNeitherTheMainThreadNorTheEnd) {
    QtCloudHarness harness;
    fakes::StuckDisk disk;
    const auto listening = harness.store().changedExternally([](const CloudChange&) {});
    harness.store().set("key", Data("1"));
    harness.store().requestSynchronize();
    ASSERT_TRUE(harness.waitUntil([&] { return disk.holdsSomeone(); }));
    harness.store().set("key", Data("2"));
    EXPECT_EQ(harness.store().data("key"), Data("2"));
    harness.store().requestSynchronize();
    harness.store().requestSynchronize();
    harness.end();
    EXPECT_TRUE(disk.holdsSomeone());
    disk.release();
    EXPECT_TRUE(harness.waitUntil([&] { return harness.read("key") == "1"; }));
}

TEST(QtCloudStore, ManyThreadsUseItAtOnce) {
    QtCloudHarness harness;
    auto& store = harness.store();
    const auto listening = store.changedExternally([](const CloudChange&) {});
    std::atomic<int> done = 0;
    for (int number = 0; number < 8; ++number) {
        harness.dispatching().dispatch().global(Priority::normal, [&, number] {
            const auto key = "key" + std::to_string(number % 4);
            for (int round = 0; round < 20; ++round) {
                store.set(key, Data(std::to_string(round)));
                store.requestSynchronize();
                EXPECT_TRUE(store.synchronize());
                EXPECT_TRUE(store.isSignedIn());
                EXPECT_TRUE(store.data(key));
            }
            ++done;
        });
    }
    EXPECT_TRUE(harness.waitUntil([&] { return done == 8; }));
    EXPECT_TRUE(store.wasSignedIn());
    EXPECT_TRUE(store.synchronize());
    EXPECT_EQ(harness.read("key0"), "19");
}

} // namespace fernwick::platform
