#include "SyncBench.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr std::string_view kCloudTunnels = "fernWick_tunnels_v2";

class SyncCloudTest : public SyncPageTest {
protected:
    void share() {
        bench.cloud.signIn();
        bench.defaults.set("syncWithiCloud", {true});
        bench.openPage();
    }
};

} // namespace

TEST_F(SyncCloudTest, SwitchShowsAndSetsWhetherItIsShared) {
    bench.cloud.signIn();
    bench.storeTunnels(1);
    bench.openPage();
    EXPECT_FALSE(bench.on("syncWithiCloudSwitch"));
    bench.click("syncWithiCloudSwitch");
    EXPECT_TRUE(bench.manager->syncWithiCloud());
    EXPECT_TRUE(bench.on("syncWithiCloudSwitch"));
    EXPECT_TRUE(bench.cloud.remote().contains(std::string(kCloudTunnels)));
    EXPECT_EQ(bench.text("iCloudStatus"), "Synced");
    EXPECT_EQ(bench.dismissAlert(), "(no alert)");
    bench.click("syncWithiCloudSwitch");
    EXPECT_FALSE(bench.manager->syncWithiCloud());
    EXPECT_EQ(bench.text("iCloudStatus"), "Available");
}

TEST_F(SyncCloudTest, SwitchFollowsWhatIsStored) {
    share();
    EXPECT_TRUE(bench.on("syncWithiCloudSwitch"));
    EXPECT_EQ(bench.cloud.synchronizations(), 1U); // of the observer: showing the page pushes nothing
}

TEST_F(SyncCloudTest, StatusIsToldInItsWords) {
    bench.prepare();
    bench.window->show();
    EXPECT_EQ(bench.text("iCloudStatus"), "Checking...");
    bench.settle();
    EXPECT_EQ(bench.text("iCloudStatus"), "Not signed in to iCloud");
    bench.cloud.signIn();
    bench.click("checkStatusButton");
    EXPECT_EQ(bench.text("iCloudStatus"), "Available");
}

TEST_F(SyncCloudTest, PushIsTold) {
    share();
    bench.find<QAbstractButton>("pushButton").click();
    EXPECT_FALSE(bench.enabled("pushButton"));
    EXPECT_TRUE(bench.enabled("pullButton"));
    bench.dispatch.runMain();
    bench.dispatch.runGlobal();
    bench.dispatch.runMain();
    EXPECT_EQ(bench.text("iCloudStatus"), "Syncing...");
    bench.settle();
    EXPECT_EQ(bench.dismissAlert(), "Pushed to iCloud: Data sent to iCloud successfully.");
    EXPECT_EQ(bench.text("iCloudStatus"), "Synced");
    EXPECT_TRUE(bench.enabled("pushButton"));
}

TEST_F(SyncCloudTest, PushThatFailsIsTold) {
    share();
    bench.cloud.fail();
    bench.click("pushButton");
    EXPECT_EQ(bench.dismissAlert(), "Push failed: Check iCloud availability.");
    EXPECT_EQ(bench.text("iCloudStatus"), "Error: Sync failed");
    EXPECT_TRUE(bench.enabled("pushButton"));
}

TEST_F(SyncCloudTest, PushWithoutSharingFails) {
    bench.openPage();
    bench.click("pushButton");
    EXPECT_EQ(bench.dismissAlert(), "Push failed: Check iCloud availability.");
}

TEST_F(SyncCloudTest, PullIsTold) {
    share();
    bench.cloud.writeElsewhere(kCloudTunnels, listOf<Tunnel>(2));
    bench.click("pullButton");
    EXPECT_FALSE(bench.enabled("pullButton"));
    EXPECT_EQ(bench.dismissAlert(), "(no alert)");
    bench.advance(seconds(1));
    EXPECT_EQ(bench.dismissAlert(), "Pulled from iCloud: Local data updated from iCloud.");
    EXPECT_EQ(bench.stored(kTunnels), listOf<Tunnel>(2));
    EXPECT_TRUE(bench.enabled("pullButton"));
}

TEST_F(SyncCloudTest, PullOfNothingIsTold) {
    share();
    bench.click("pullButton");
    bench.advance(seconds(1));
    EXPECT_EQ(bench.dismissAlert(), "Nothing to pull: No data found in iCloud yet.");
}

TEST_F(SyncCloudTest, LastExchangeIsToldAndFollowsTheTime) {
    share();
    EXPECT_FALSE(bench.seen("lastSynced"));
    bench.click("pushButton");
    bench.dismissAlert();
    EXPECT_EQ(bench.text("lastSynced"), "Last synced: 0 sec. ago");
    bench.advance(seconds(65));
    EXPECT_EQ(bench.text("lastSynced"), "Last synced: 1 min. ago");
    bench.advance(hours(3));
    EXPECT_EQ(bench.text("lastSynced"), "Last synced: 3 hr. ago");
}

TEST_F(SyncCloudTest, HiddenPageWakesNobody) {
    share();
    bench.click("pushButton");
    bench.dismissAlert();
    EXPECT_EQ(bench.dispatch.pendingTimers(), 1U);
    bench.page->hide();
    EXPECT_EQ(bench.dispatch.pendingTimers(), 0U);
    bench.advance(minutes(5));
    bench.page->show();
    EXPECT_EQ(bench.text("lastSynced"), "Last synced: 5 min. ago");
    EXPECT_EQ(bench.dispatch.pendingTimers(), 1U);
}

TEST_F(SyncCloudTest, NothingTicksOnAPageWithoutADate) {
    bench.openPage();
    EXPECT_EQ(bench.dispatch.pendingTimers(), 0U);
}

TEST_F(SyncCloudTest, FolderThatStandsForTheCloudIsNamed) {
    bench.openPage();
    EXPECT_EQ(bench.text("cloudFolder"), "~/.local/share/Fernwick/Cloud");
}

TEST_F(SyncCloudTest, FolderOutsideOfHomeIsNamedWhole) {
    bench.cloudFolder = "/home/someone-else/Cloud";
    bench.openPage();
    EXPECT_EQ(bench.text("cloudFolder"), "/home/someone-else/Cloud");
}

TEST_F(SyncCloudTest, WithoutSuchAFolderNoneIsNamed) {
    bench.cloudFolder.clear();
    bench.openPage();
    EXPECT_EQ(bench.look<QLabel>("cloudFolder"), nullptr);
}

} // namespace fernwick::tests
