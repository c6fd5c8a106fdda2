#include "catalogue/TunnelStore.h"

#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeUserDefaults.h"
#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

struct StoreWorld {
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeUserDefaults defaults;

    TunnelStore open() { return {defaults, clock}; }

    void put(std::string json) { defaults.setData(TunnelStore::kDefaultsKey, std::move(json)); }

    // The text under the key.
    [[nodiscard]] std::string stored() const {
        const auto data = defaults.data("savedTunnelsData_v2");
        return data ? data->bytes() : "(nothing)";
    }

    [[nodiscard]] std::vector<Tunnel> storedList() const {
        return support::decodeList<Tunnel>(stored()).value_or(std::vector<Tunnel>{});
    }
};

Tunnel named(std::string name) {
    Tunnel tunnel;
    tunnel.id = support::Uuid::random();
    tunnel.name = std::move(name);
    return tunnel;
}

std::string jsonOf(const std::vector<Tunnel>& tunnels) {
    return *support::encodeList(tunnels);
}

std::vector<std::string> namesOf(const TunnelStore& store) {
    std::vector<std::string> names;
    for (const auto& tunnel : store.tunnels()) {
        names.push_back(tunnel.name);
    }
    return names;
}

using Names = std::vector<std::string>;

TEST(TunnelStore, FirstStartMakesTheSampleAndStoresIt) {
    StoreWorld world;
    const auto store = world.open();
    ASSERT_EQ(store.tunnels().size(), 1U);
    auto expected = named("My First Tunnel");
    expected.id = store.tunnels().front().id;
    expected.host = "example.com";
    expected.user = "ubuntu";
    expected.localPort = "8080";
    expected.remotePort = "80";
    expected.notes = "Sample tunnel - edit or delete";
    expected.createdAt = world.clock.now();
    EXPECT_EQ(store.tunnels().front(), expected);
    EXPECT_EQ(expected.sshPort, "22");
    EXPECT_EQ(expected.remoteHost, "localhost");
    EXPECT_EQ(world.storedList(), store.tunnels());
}

TEST(TunnelStore, LoadsWhatWasStoredAndWritesItBack) {
    StoreWorld world;
    const std::vector tunnels{named("b"), named("a")};
    world.put(jsonOf(tunnels));
    const auto writes = world.defaults.changes().size();
    const auto store = world.open();
    EXPECT_EQ(store.tunnels(), tunnels);
    EXPECT_EQ(world.defaults.changes().size(), writes + 1);
    EXPECT_EQ(world.stored(), jsonOf(tunnels));
}

TEST(TunnelStore, OneBrokenRecordReplacesTheListByTheSample) {
    StoreWorld world;
    auto json = jsonOf({named("good"), named("broken")});
    json.replace(json.rfind(R"("notes":"",)"), 11, "");
    world.put(json);
    const auto store = world.open();
    EXPECT_EQ(namesOf(store), Names{"My First Tunnel"});
    EXPECT_EQ(world.storedList(), store.tunnels());
}

TEST(TunnelStore, ValueOfAnotherTypeCountsAsNothing) {
    StoreWorld world;
    world.defaults.set(TunnelStore::kDefaultsKey, {std::string("[]")});
    EXPECT_EQ(namesOf(world.open()), Names{"My First Tunnel"});
}

TEST(TunnelStore, EmptyListIsValidAndMakesNoSample) {
    StoreWorld world;
    world.put("[]");
    EXPECT_TRUE(world.open().tunnels().empty());
    EXPECT_EQ(world.stored(), "[]");
}

TEST(TunnelStore, OlderKeyIsNeitherReadNorWritten) {
    StoreWorld world;
    const auto old = jsonOf({named("old")});
    world.defaults.setData("savedTunnelsData", old);
    EXPECT_EQ(namesOf(world.open()), Names{"My First Tunnel"});
    EXPECT_EQ(world.defaults.data("savedTunnelsData")->bytes(), old);
}

TEST(TunnelStore, ReloadOfBrokenDataKeepsBothListAndData) {
    StoreWorld world;
    world.put(jsonOf({named("mine")}));
    auto store = world.open();
    world.put("[{}]");
    int changes = 0;
    const auto subscription = store.changed.connect([&] { ++changes; });
    store.reload();
    EXPECT_EQ(namesOf(store), Names{"mine"});
    EXPECT_EQ(world.stored(), "[{}]");
    world.defaults.remove(TunnelStore::kDefaultsKey);
    store.reload();
    EXPECT_EQ(namesOf(store), Names{"mine"});
    EXPECT_EQ(world.stored(), "(nothing)");
    EXPECT_EQ(changes, 0);
}

TEST(TunnelStore, ReloadTakesTheStoredListAndWritesItBack) {
    StoreWorld world;
    auto store = world.open();
    world.put(jsonOf({named("imported")}));
    const auto writes = world.defaults.changes().size();
    store.reload();
    EXPECT_EQ(namesOf(store), Names{"imported"});
    EXPECT_EQ(world.defaults.changes().size(), writes + 1);
}

TEST(TunnelStore, AddAppendsEvenADuplicateId) {
    StoreWorld world;
    world.put("[]");
    auto store = world.open();
    const auto tunnel = named("twice");
    store.add(tunnel);
    store.add(tunnel);
    EXPECT_EQ(namesOf(store), (Names{"twice", "twice"}));
    EXPECT_EQ(world.storedList(), store.tunnels());
}

TEST(TunnelStore, UpdateReplacesTheFirstOfThatId) {
    StoreWorld world;
    world.put("[]");
    auto store = world.open();
    auto tunnel = named("old");
    store.add(tunnel);
    store.add(tunnel);
    tunnel.name = "new";
    store.update(tunnel);
    EXPECT_EQ(namesOf(store), (Names{"new", "old"}));
    EXPECT_EQ(world.storedList(), store.tunnels());
}

TEST(TunnelStore, UpdateOfADeletedTunnelDoesNothingAndSavesNothing) {
    StoreWorld world;
    auto store = world.open();
    const auto writes = world.defaults.changes().size();
    int changes = 0;
    const auto subscription = store.changed.connect([&] { ++changes; });
    store.update(named("gone"));
    EXPECT_EQ(namesOf(store), Names{"My First Tunnel"});
    EXPECT_EQ(world.defaults.changes().size(), writes);
    EXPECT_EQ(changes, 0);
}

TEST(TunnelStore, RemoveTakesEveryTunnelOfThatIdAndKeepsTheOrder) {
    StoreWorld world;
    world.put("[]");
    auto store = world.open();
    const auto twice = named("twice");
    for (const auto& tunnel : {named("a"), twice, named("b"), twice, named("c")}) {
        store.add(tunnel);
    }
    store.remove(twice.id);
    EXPECT_EQ(namesOf(store), (Names{"a", "b", "c"}));
    EXPECT_EQ(world.storedList(), store.tunnels());
}

TEST(TunnelStore, ListThatCannotBeEncodedLeavesTheStoredOne) {
    StoreWorld world;
    world.put("[]");
    auto store = world.open();
    store.add(named("\xff not text"));
    EXPECT_EQ(store.tunnels().size(), 1U);
    EXPECT_EQ(world.stored(), "[]");
}

TEST(TunnelStore, EveryChangeIsTold) {
    StoreWorld world;
    auto store = world.open();
    int changes = 0;
    const auto subscription = store.changed.connect([&] { ++changes; });
    auto tunnel = named("t");
    store.add(tunnel);
    store.update(tunnel);
    store.remove(tunnel.id);
    store.reload();
    store.announceChange();
    EXPECT_EQ(changes, 5);
}

} // namespace
} // namespace fernwick
