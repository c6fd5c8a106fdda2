#include "CloudFolderHarness.h"
#include "CloudStoreContract.h"
#include "PrivateMounts.h"
#include "support/FakeCloudStore.h"

#include <algorithm>
#include <fstream>
#include <sys/resource.h>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

class FakeCloudHarness {
public:
    FakeCloudHarness() { store_.signIn(); }

    CloudStore& store() { return store_; }
    void setSignedIn(bool signedIn) { store_.signIn(signedIn); }
    void change(const std::string& key, const std::string& bytes) {
        store_.writeElsewhere(key, bytes);
        EXPECT_TRUE(store_.synchronize());
    }
    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        dispatch_.runAll();
        return condition();
    }

private:
    fakes::FakeDispatch dispatch_;
    fakes::FakeCloudStore store_{dispatch_};
};

using Keys = std::vector<std::string>;
using Calls = std::vector<Keys>;

class FolderCloudStoreTest : public testing::Test {
protected:
    // Listens, once what is in the folder has been seen and the watch has begun.
    void listen() {
        listening_ = store().changedExternally([this](const CloudChange& change) { told_.push_back(*change); });
        // The watch's beginning is what the time is started for.
        EXPECT_TRUE(fakes::waitUntil([this] { return dispatch().pendingDelayed() == 1; }));
        dispatch().advance(FolderCloudStore::kQuiet);
        EXPECT_TRUE(told_.empty());
    }
    // Changes another key, and waits until that is told: what went before would be told by then.
    [[nodiscard]] Calls toldBeforeAnother() {
        harness_.change("zzz", std::to_string(++sentinels_));
        EXPECT_TRUE(harness_.waitUntil(
            [this] { return !told_.empty() && std::ranges::find(told_.back(), "zzz") != told_.back().end(); }));
        auto told = std::exchange(told_, {});
        std::erase(told.back(), "zzz");
        if (told.back().empty()) {
            told.pop_back();
        }
        return told;
    }
    [[nodiscard]] bool isTold(const Keys& keys) {
        const bool told = harness_.waitUntil([&] { return !told_.empty(); });
        EXPECT_EQ(std::exchange(told_, {}), Calls{keys});
        return told;
    }
    CloudStore& store() { return harness_.store(); }
    fakes::FakeDispatch& dispatch() { return harness_.dispatching().dispatch(); }

    CloudFolderHarness<PassingTime> harness_;
    Calls told_; // by call
    support::Subscription listening_;
    int sentinels_ = 0;
};

std::ptrdiff_t threads() {
    return std::distance(fs::directory_iterator("/proc/self/task"), {});
}

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, CloudStoreContract, FakeCloudHarness);
INSTANTIATE_TYPED_TEST_SUITE_P(Folder, CloudStoreContract, CloudFolderHarness<PassingTime>);

TEST_F(FolderCloudStoreTest, NothingHappensBeforeTheFirstUse) {
    harness_.setSignedIn(false);
    const auto before = threads();
    store();
    dispatch().advance(std::chrono::hours(1));
    EXPECT_EQ(threads(), before);
    EXPECT_TRUE(dispatch().records().empty());
    EXPECT_TRUE(dispatch().serialLabels().empty());
    EXPECT_FALSE(fs::exists(harness_.path()));
}

TEST_F(FolderCloudStoreTest, RestCostsNothing) {
    listen();
    const auto before = dispatch().records().size();
    dispatch().advance(std::chrono::hours(1));
    EXPECT_EQ(dispatch().records().size(), before);
}

TEST_F(FolderCloudStoreTest, FileHoldsTheBytesForItsOwnerAlone) {
    const std::string bytes("[\0\xff", 3);
    store().set("fernWick_tags_v1", Data(bytes));
    EXPECT_FALSE(fs::exists(harness_.path("fernWick_tags_v1")));
    EXPECT_TRUE(store().synchronize());
    EXPECT_EQ(harness_.read("fernWick_tags_v1"), bytes);
    EXPECT_EQ(fs::status(harness_.path("fernWick_tags_v1")).permissions(),
              fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(FolderCloudStoreTest, PresentFilesAreReadInTheBackgroundAndToldToNobody) {
    harness_.change("a", "1");
    listen();
    store().set("b", Data("2"));
    EXPECT_EQ(store().data("a"), Data("1"));
    store().requestSynchronize();
    store().requestSynchronize();
    EXPECT_EQ(dispatch().queuedGlobal(), 1U);
    dispatch().runAll();
    EXPECT_EQ(harness_.read("b"), "2");
    EXPECT_TRUE(toldBeforeAnother().empty());
}

TEST_F(FolderCloudStoreTest, TwoStoresSeeEachOthersWritesAndNotTheirOwn) {
    listen();
    const auto other = harness_.open();
    Calls toldOther;
    const auto listening =
        other->changedExternally([&](const CloudChange& change) { toldOther.push_back(*change); });
    EXPECT_TRUE(other->synchronize());
    store().set("mine", Data("1"));
    EXPECT_TRUE(store().synchronize());
    EXPECT_TRUE(harness_.waitUntil([&] { return toldOther == Calls{Keys{"mine"}}; }));
    EXPECT_EQ(other->data("mine"), Data("1"));
    other->set("mine", Data("2"));
    EXPECT_TRUE(other->synchronize());
    EXPECT_TRUE(isTold({"mine"}));
    EXPECT_EQ(store().data("mine"), Data("2"));
    EXPECT_TRUE(toldBeforeAnother().empty());
    EXPECT_EQ(toldOther.front(), Keys{"mine"});
    EXPECT_TRUE(harness_.waitUntil([&] { return toldOther.back() == Keys{"zzz"}; }));
    EXPECT_EQ(toldOther.size(), 2U);
}

TEST_F(FolderCloudStoreTest, BurstIsToldOnceAndSorted) {
    listen();
    for (const auto* key : {"fernWick_tunnels_v2", "fernWick_tags_v1", "fernWick_keys_v1",
                            "fernWick_proxies_v1", "fernWick_rules_v1"}) {
        harness_.change(key, "[]");
    }
    EXPECT_TRUE(isTold({"fernWick_keys_v1", "fernWick_proxies_v1", "fernWick_rules_v1", "fernWick_tags_v1",
                        "fernWick_tunnels_v2"}));
    EXPECT_TRUE(toldBeforeAnother().empty());
}

TEST_F(FolderCloudStoreTest, FolderThatNeverRestsIsLookedAtAllTheSame) {
    listen();
    int writes = 0;
    EXPECT_TRUE(harness_.waitUntil([&] {
        harness_.change("restless", std::to_string(++writes));
        return !told_.empty();
    }));
}

TEST_F(FolderCloudStoreTest, SameBytesAreNoChange) {
    harness_.change("key", "value");
    listen();
    harness_.change("key", "value");
    EXPECT_TRUE(toldBeforeAnother().empty());
    harness_.remove("key");
    EXPECT_EQ(toldBeforeAnother(), Calls{Keys{"key"}});
    EXPECT_EQ(store().data("key"), std::nullopt);
}

TEST_F(FolderCloudStoreTest, WhatIsNoValueIsNotTaken) {
    harness_.change("key", "value");
    listen();
    harness_.folder().write("Fernwick/Cloud/key (conflicted copy 2026-01-01)", "theirs");
    harness_.folder().write("Fernwick/Cloud/key.sync-conflict-20260101-120000-ABCDEFG", "theirs");
    harness_.folder().write("Fernwick/Cloud/key.part", "half");
    harness_.change("key", "");
    fs::create_directory(harness_.path("folder"));
    EXPECT_TRUE(toldBeforeAnother().empty());
    EXPECT_EQ(store().data("key"), Data("value"));
    EXPECT_EQ(store().data("key.part"), std::nullopt);
    store().set("key.part", Data("refused"));
    store().set("../key", Data("refused"));
    EXPECT_EQ(store().data("key.part"), std::nullopt);
    EXPECT_TRUE(store().synchronize());
    EXPECT_EQ(harness_.folder().read("Fernwick/key"), "");
}

TEST_F(FolderCloudStoreTest, HalfWrittenFileIsLeftAloneUntilItIsClosed) {
    harness_.change("key", "old value");
    listen();
    {
        std::ofstream file(harness_.path("key"), std::ios::binary);
        file << "new " << std::flush;
        EXPECT_TRUE(toldBeforeAnother().empty());
        EXPECT_EQ(store().data("key"), Data("old value"));
        file << "value";
    }
    EXPECT_TRUE(isTold({"key"}));
    EXPECT_EQ(store().data("key"), Data("new value"));
}

TEST_F(FolderCloudStoreTest, HardLinkIsSeen) {
    listen();
    harness_.folder().write("elsewhere", "value");
    fs::create_hard_link(harness_.folder() / "elsewhere", harness_.path("key"));
    EXPECT_TRUE(isTold({"key"}));
}

TEST_F(FolderCloudStoreTest, FolderThatAppearsIsNoticed) {
    fs::remove_all(harness_.folder() / "Fernwick"); // with the folder above
    listen();
    EXPECT_FALSE(store().isSignedIn());
    harness_.setSignedIn(true);
    harness_.change("key", "value");
    EXPECT_TRUE(isTold({"key"}));
    EXPECT_TRUE(store().wasSignedIn());
    EXPECT_TRUE(store().synchronize());
}

TEST_F(FolderCloudStoreTest, FolderThatVanishesChangesNothingButTheAccount) {
    harness_.change("a", "1");
    harness_.change("b", "1");
    listen();
    EXPECT_TRUE(store().isSignedIn());
    harness_.setSignedIn(false);
    EXPECT_TRUE(harness_.waitUntil([this] { return !store().wasSignedIn(); }));
    EXPECT_FALSE(store().synchronize());
    EXPECT_EQ(store().data("a"), Data("1"));
    fs::create_directory(harness_.folder() / "new");
    harness_.folder().write("new/a", "1");
    harness_.folder().write("new/b", "2");
    fs::rename(harness_.folder() / "new", harness_.path());
    EXPECT_TRUE(isTold({"b"}));
}

TEST_F(FolderCloudStoreTest, FolderThatIsReplacedIsNoticed) {
    harness_.change("key", "old");
    listen();
    fs::rename(harness_.path(), harness_.folder() / "away");
    fs::create_directory(harness_.folder() / "other");
    harness_.folder().write("other/key", "new");
    fs::create_directory_symlink(harness_.folder() / "other", harness_.path());
    EXPECT_TRUE(isTold({"key"}));
    harness_.change("key", "newer"); // behind the link
    EXPECT_TRUE(isTold({"key"}));
    EXPECT_EQ(store().data("key"), Data("newer"));
}

TEST_F(FolderCloudStoreTest, FileWhereTheFolderShouldBeIsNoAccount) {
    harness_.setSignedIn(false);
    harness_.folder().write("Fernwick/Cloud", "no folder");
    listen();
    EXPECT_FALSE(store().isSignedIn());
    store().set("key", Data("value"));
    EXPECT_FALSE(store().synchronize());
    EXPECT_EQ(harness_.folder().read("Fernwick/Cloud"), "no folder");
    harness_.setSignedIn(false);
    harness_.setSignedIn(true);
    harness_.change("other", "value");
    EXPECT_TRUE(isTold({"other"}));
    EXPECT_TRUE(store().synchronize());
    EXPECT_EQ(harness_.read("key"), "value");
}

TEST_F(FolderCloudStoreTest, WhatIsSetButNotWrittenHidesWhatOthersWrite) {
    listen();
    store().set("key", Data("mine"));
    harness_.change("key", "theirs");
    EXPECT_TRUE(toldBeforeAnother().empty());
    EXPECT_EQ(store().data("key"), Data("mine"));
    EXPECT_TRUE(store().synchronize());
    EXPECT_EQ(harness_.read("key"), "mine");
}

TEST_F(FolderCloudStoreTest, FullDiskKeepsTheOldFileAndTheNewValueForTheNextTime) {
    PrivateMounts mounts;
    mounts.mountDisk(harness_.path(), 64UL * 1024);
    store().set("key", Data("small"));
    EXPECT_TRUE(store().synchronize());
    harness_.folder().write("Fernwick/Cloud/.filler", std::string(40UL * 1024, 'f'));
    const std::string bytes(32UL * 1024, 'v');
    store().set("key", Data(bytes));
    store().set("also", Data("fits"));
    EXPECT_FALSE(store().synchronize());
    EXPECT_EQ(harness_.read("key"), "small");
    EXPECT_EQ(harness_.read("also"), "fits");
    EXPECT_EQ(store().data("key"), Data(bytes));
    EXPECT_EQ(std::distance(fs::directory_iterator(harness_.path()), {}), 3);
    fs::remove(harness_.path(".filler"));
    EXPECT_TRUE(store().synchronize());
    EXPECT_EQ(harness_.read("key"), bytes);
}

TEST_F(FolderCloudStoreTest, ReadOnlyFolderIsReadAndWrittenLater) {
    harness_.change("theirs", "1");
    PrivateMounts mounts;
    mounts.setReadOnly(harness_.path(), true);
    store().set("mine", Data("2"));
    EXPECT_FALSE(store().synchronize());
    EXPECT_FALSE(store().synchronize());
    EXPECT_TRUE(store().isSignedIn());
    EXPECT_EQ(store().data("theirs"), Data("1"));
    mounts.setReadOnly(harness_.path(), false);
    EXPECT_TRUE(store().synchronize());
    EXPECT_EQ(harness_.read("mine"), "2");
}

TEST_F(FolderCloudStoreTest, ValueThatNobodyWouldReadIsNotWritten) {
    store().set("key", Data(std::string(64UL * 1024 * 1024 + 1, 'x')));
    EXPECT_FALSE(store().synchronize());
    EXPECT_FALSE(fs::exists(harness_.path("key")));
    store().set("key", Data("value"));
    EXPECT_TRUE(store().synchronize());
}

TEST_F(FolderCloudStoreTest, WithoutAWatchTheRestWorks) {
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    store();
    // Once with all it needs: what a sanitizer looks up at the first call takes descriptors too.
    harness_.open()->changedExternally([](const CloudChange&) {}).reset();
    const rlimit none{0, limit.rlim_max};
    testing::internal::CaptureStderr();
    setrlimit(RLIMIT_NOFILE, &none);
    listening_ = store().changedExternally([this](const CloudChange& change) { told_.push_back(*change); });
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "[CloudStore] " + harness_.path() + " cannot be watched: Too many open files\n");
    EXPECT_TRUE(store().synchronize());
    harness_.change("key", "value");
    EXPECT_TRUE(store().synchronize());
    EXPECT_TRUE(isTold({"key"}));
}

TEST_F(FolderCloudStoreTest, EndTellsNothingMore) {
    listen();
    harness_.change("key", "value");
    EXPECT_TRUE(fakes::waitUntil([this] { return dispatch().pendingDelayed() == 1; }));
    harness_.end();
    harness_.change("key", "another");
    dispatch().advance(std::chrono::seconds(1));
    EXPECT_TRUE(told_.empty());
}

} // namespace fernwick::platform
