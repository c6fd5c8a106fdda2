#include "screens/main/TunnelRules.h"

#include "Bench.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> namesOf(const TunnelSelection& tunnels) {
    std::vector<std::string> names;
    for (const Tunnel* tunnel : tunnels) {
        names.push_back(tunnel->name);
    }
    return names;
}

struct SearchCase {
    const char* label;
    std::string name, host, user, search;
    bool found;
};

class Search : public testing::TestWithParam<SearchCase> {};

TEST_P(Search, LooksInNameHostAndUserOnly) {
    Tunnel tunnel = tunnelNamed(GetParam().name, GetParam().user, GetParam().host);
    tunnel.localPort = "8080";
    tunnel.remotePort = "5432";
    tunnel.remoteHost = "inner.example";
    tunnel.notes = "remember the milk";
    EXPECT_EQ(filteredTunnels({tunnel}, GetParam().search, std::nullopt).size(), GetParam().found ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Search,
    testing::Values(SearchCase{"NothingTyped", "Web", "h", "u", "", true},
                    SearchCase{"InTheName", "Web", "h", "u", "web", true},
                    SearchCase{"InTheHost", "Web", "Db.Example.com", "u", "db.ex", true},
                    SearchCase{"InTheUserWhateverItsCase", "Web", "h", "Ubuntu", "ubuntu", true},
                    SearchCase{"AcrossTwoFields", "Web", "h", "u", "webh", false},
                    SearchCase{"PortsAreNotSearched", "Web", "h", "u", "8080", false},
                    SearchCase{"RemotePortsAreNotSearched", "Web", "h", "u", "5432", false},
                    SearchCase{"NotesAreNotSearched", "Web", "h", "u", "milk", false},
                    SearchCase{"TheRemoteHostIsNotSearched", "Web", "h", "u", "inner", false},
                    SearchCase{"ABlankIsABlank", "Web", "h", "u", " ", false},
                    SearchCase{"ABlankIsFound", "My web", "h", "u", " ", true},
                    SearchCase{"NothingIsTrimmed", "Web", "h", "u", "web ", false},
                    SearchCase{"OtherScripts", "ПРОД", "h", "u", "прод", true},
                    SearchCase{"ComposedAndDecomposed", "Caf\u00e9", "h", "u", "cafe\u0301", true}),
    [](const auto& info) { return info.param.label; });

TEST(FilteredTunnels, KeepsTheOrderOfTheCatalogue) {
    const std::vector all{tunnelNamed("b web"), tunnelNamed("a web"), tunnelNamed("db"), tunnelNamed("c web")};
    EXPECT_THAT(namesOf(filteredTunnels(all, "web", std::nullopt)), ElementsAre("b web", "a web", "c web"));
}

TEST(FilteredTunnels, AppliesSearchAndTagTogether) {
    const TunnelTag tag{support::Uuid::random(), "Work", "#123456"};
    std::vector all{tunnelNamed("web one"), tunnelNamed("web two"), tunnelNamed("db")};
    all[1].tagIDs = {support::Uuid::random(), tag.id};
    all[2].tagIDs = {tag.id};
    EXPECT_THAT(namesOf(filteredTunnels(all, "", tag)), ElementsAre("web two", "db"));
    EXPECT_THAT(namesOf(filteredTunnels(all, "web", tag)), ElementsAre("web two"));
}

TEST(FilteredTunnels, GoesByTheIdOfTheTagAndNotByItsName) {
    const TunnelTag tag{support::Uuid::random(), "Work", "#123456"};
    Tunnel tunnel = tunnelNamed("web");
    tunnel.tagIDs = {tag.id};
    const TunnelTag renamed{tag.id, "Play", "#000000"};
    const TunnelTag namesake{support::Uuid::random(), "Work", "#123456"};
    EXPECT_EQ(filteredTunnels({tunnel}, "", renamed).size(), 1U);
    EXPECT_THAT(filteredTunnels({tunnel}, "", namesake), IsEmpty());
}

TEST(Statistics, CountConnectingAndConnectedAsActive) {
    Bench bench;
    const auto idle = bench.add(tunnelNamed("never touched"));
    const auto up = bench.add(tunnelNamed("up"));
    const auto starting = bench.add(tunnelNamed("starting"));
    const auto failed = bench.add(tunnelNamed("failed"));
    bench.connected(up);
    bench.processes.failNextLaunch({2, "No such file or directory"});
    bench.manager.connect(failed, bench.store);
    bench.manager.connect(starting, bench.store);
    bench.settle();
    EXPECT_EQ(bench.manager.status(starting.id), TunnelStatus::connecting());
    EXPECT_EQ(statisticsOf(bench.store.tunnels(), bench.manager), (TunnelStatistics{4, 2}));
    EXPECT_FALSE(bench.manager.status(idle.id));
}

TEST(Duplicate, KeepsEverythingButIdAndName) {
    Tunnel original = tunnelNamed("Prod");
    original.createdAt = {1.5};
    original.lastConnectedAt = support::Date{2.5};
    original.tagIDs = {support::Uuid::random()};
    original.notes = "n";
    Tunnel copy = duplicateOf(original);
    EXPECT_NE(copy.id, original.id);
    EXPECT_EQ(copy.name, "Prod Copy");
    copy.id = original.id;
    copy.name = original.name;
    EXPECT_EQ(copy, original);
}

TEST(NewTunnel, StartsWithTheValuesOfANewTunnel) {
    const Tunnel tunnel = newTunnel({"", " host ", "user", ""}, {42});
    Tunnel expected;
    expected.id = tunnel.id;
    expected.name = "New Tunnel";
    expected.host = " host ";
    expected.sshPort = "22";
    expected.user = "user";
    expected.localPort = "";
    expected.remotePort = "";
    expected.remoteHost = "localhost";
    expected.tunnelType = TunnelType::localForward;
    expected.authMethod = AuthMethod::privateKey;
    expected.identityKeyID = std::nullopt;
    expected.tagIDs = {};
    expected.notes = "";
    expected.keepAliveInterval = 60;
    expected.reconnectOnFailure = true;
    expected.compression = false;
    expected.jumpHost = "";
    expected.createdAt = {42};
    expected.lastConnectedAt = std::nullopt;
    EXPECT_EQ(tunnel, expected);
    EXPECT_NE(tunnel.id, newTunnel({"", "h", "u", ""}, {42}).id);
}

TEST(NewTunnel, NeedsAHostAndAUserAndTrimsNothing) {
    EXPECT_FALSE((NewTunnelFields{"n", "", "u", "1"}.canCreate()));
    EXPECT_FALSE((NewTunnelFields{"n", "h", "", "1"}.canCreate()));
    EXPECT_TRUE((NewTunnelFields{"", "h", "u", ""}.canCreate()));
    EXPECT_TRUE((NewTunnelFields{"", " ", " ", ""}.canCreate()));
    EXPECT_EQ(newTunnel({" ", "h", "u", "x y"}, {}).name, " ");
    EXPECT_EQ(newTunnel({" ", "h", "u", "x y"}, {}).localPort, "x y");
}

} // namespace
} // namespace fernwick::tests
