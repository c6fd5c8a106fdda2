#include "portability/ImportMerge.h"

#include "catalogue/StoredList.h"
#include "portability/FernwickSSHImporter.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileSystem.h"
#include "support/FakePlatform.h"
#include "support/FakeUserDefaults.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::tests {

namespace {

constexpr std::string_view kKey = "savedTunnelsData_v2";

Tunnel tunnel(const std::string& name, const support::Uuid& id = support::Uuid::random()) {
    Tunnel made;
    made.id = id;
    made.name = name;
    return made;
}

std::vector<std::string> namesOf(const std::vector<Tunnel>& tunnels) {
    std::vector<std::string> names;
    for (const auto& each : tunnels) {
        names.push_back(each.name);
    }
    return names;
}

class ImportMergeTest : public testing::Test {
protected:
    using Names = std::vector<std::string>;

    ImportMergeTest() {
        writeStoredList(defaults_, kKey, std::vector{tunnel("one", id_), tunnel("two")});
        store_ = std::make_unique<TunnelStore>(defaults_, clock_);
        observing_ = notifications_.observe("fernwick.tunnelsDidChange", [this] {
            ++posts_;
            namesAtPost_ = namesOf(store_->tunnels());
        });
        merge_ = std::make_unique<ImportMerge>(defaults_, dispatch_, *store_, notifications_);
    }

    [[nodiscard]] Names stored() const {
        return namesOf(readStoredList<Tunnel>(defaults_, kKey).value_or(std::vector<Tunnel>()));
    }

    fakes::FakeDispatch dispatch_;
    fakes::FakeClock clock_{dispatch_};
    fakes::FakeUserDefaults defaults_;
    support::NotificationCenter notifications_;
    support::Uuid id_ = support::Uuid::random();
    std::unique_ptr<TunnelStore> store_;
    std::unique_ptr<ImportMerge> merge_;
    support::Subscription observing_;
    int posts_ = 0;
    Names namesAtPost_;
};

} // namespace

TEST_F(ImportMergeTest, NewTunnelsAreAppendedInTheirOrder) {
    merge_->merge({tunnel("z"), tunnel("a")});
    EXPECT_EQ(stored(), (Names{"one", "two", "z", "a"}));
    EXPECT_EQ(defaults_.synchronizations(), 1U);
}

TEST_F(ImportMergeTest, StoreReloadsAndIsAnnouncedAfterTheCallHasReturned) {
    merge_->merge({tunnel("new")});
    EXPECT_EQ(namesOf(store_->tunnels()), (Names{"one", "two"}));
    EXPECT_EQ(posts_, 0);
    EXPECT_EQ(dispatch_.runMain(), 1U);
    EXPECT_EQ(posts_, 1);
    EXPECT_EQ(namesAtPost_, (Names{"one", "two", "new"}));
}

TEST_F(ImportMergeTest, StoredTunnelWinsOverAnImportedOne) {
    merge_->merge({tunnel("newer", id_), tunnel("new")});
    EXPECT_EQ(stored(), (Names{"one", "two", "new"}));
}

TEST_F(ImportMergeTest, TwoNewTunnelsWithOneIdAreBothAppended) {
    const auto id = support::Uuid::random();
    merge_->merge({tunnel("first", id), tunnel("second", id)});
    EXPECT_EQ(stored(), (Names{"one", "two", "first", "second"}));
    merge_->merge({tunnel("third", id)});
    EXPECT_EQ(stored(), (Names{"one", "two", "first", "second"}));
}

TEST_F(ImportMergeTest, NothingNewIsStoredAndAnnouncedAllTheSame) {
    const auto changes = defaults_.changes().size();
    merge_->merge({});
    EXPECT_EQ(defaults_.changes().size(), changes + 1);
    EXPECT_EQ(stored(), (Names{"one", "two"}));
    dispatch_.runMain();
    EXPECT_EQ(posts_, 1);
}

TEST_F(ImportMergeTest, MissingOrUnreadableListCountsAsEmpty) {
    for (const auto* bytes : {"", "garbage", "{}", R"([{"id":1}])"}) {
        defaults_.setData(kKey, bytes);
        merge_->merge({tunnel("new")});
        EXPECT_EQ(stored(), Names{"new"}) << bytes;
    }
    defaults_.remove(kKey);
    merge_->merge({tunnel("new")});
    EXPECT_EQ(stored(), Names{"new"});
    defaults_.set(kKey, {true});
    merge_->merge({tunnel("new")});
    EXPECT_EQ(stored(), Names{"new"});
}

TEST_F(ImportMergeTest, ListThatCannotBeEncodedIsNotStored) {
    const auto changes = defaults_.changes().size();
    merge_->merge({tunnel("good"), tunnel("bad \xff")});
    EXPECT_EQ(defaults_.changes().size(), changes);
    EXPECT_EQ(defaults_.synchronizations(), 0U);
    EXPECT_EQ(dispatch_.runMain(), 0U);
    EXPECT_EQ(posts_, 0);
}

TEST_F(ImportMergeTest, GoneBeforeItsTurnItDoesNothingMore) {
    merge_->merge({tunnel("new")});
    merge_.reset();
    dispatch_.runMain();
    EXPECT_EQ(posts_, 0);
    EXPECT_EQ(stored(), (Names{"one", "two", "new"}));
}

TEST_F(ImportMergeTest, SameFileTwiceFindsTheTunnelsWithGoodIds) {
    fakes::FakeFileSystem files;
    fakes::FakeDialogs dialogs;
    const FernwickSSHImporter importer(dialogs, files, clock_);
    constexpr auto kFile =
        R"({"profiles":[)"
        R"({"uuid":"0F8FAD5B-D9CB-469F-A165-70867728950E","name":"good","address":"a","port":22,"user":"u",)"
        R"("forwardings":[]},)"
        R"({"uuid":"7","name":"bad","address":"a","port":22,"user":"u","forwardings":[]}]})";
    for (int round = 0; round < 2; ++round) {
        const auto tunnels = importer.parse(kFile);
        ASSERT_TRUE(tunnels);
        EXPECT_EQ(importedText(tunnels->size()), "Imported 2 tunnels from Fernwick SSH.");
        merge_->merge(*tunnels);
    }
    EXPECT_EQ(stored(), (Names{"one", "two", "good", "bad", "bad"}));
}

TEST(ImportedText, CountsInEnglish) {
    EXPECT_EQ(importedText(0), "Imported 0 tunnels from Fernwick SSH.");
    EXPECT_EQ(importedText(1), "Imported 1 tunnel from Fernwick SSH.");
    EXPECT_EQ(importedText(10'000), "Imported 10000 tunnels from Fernwick SSH.");
}

} // namespace fernwick::tests
