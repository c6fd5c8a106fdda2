#include "screens/menubar/TunnelTally.h"

#include "MenuBarBench.h"
#include "screens/menubar/MenuBarIconView.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

enum class State { untouched, connecting, connected, stopped, failed };

struct TallyRow {
    std::string name;
    std::vector<State> states;
    std::size_t active;
    bool hasError;
    std::string summary;
    MenuBarSymbol symbol;
};

class TallyTable : public testing::TestWithParam<TallyRow> {};

void bringTo(MenuBarBench& bench, const Tunnel& tunnel, State state) {
    switch (state) {
    case State::untouched:
        break;
    case State::connecting:
        bench.connecting(tunnel);
        break;
    case State::connected:
        bench.connected(tunnel);
        break;
    case State::stopped:
        bench.connected(tunnel);
        bench.manager.disconnect(tunnel.id);
        break;
    case State::failed:
        bench.failed(tunnel);
        break;
    }
    bench.settle();
}

TEST_P(TallyTable, CountsAndSays) {
    MenuBarBench bench;
    std::vector<Tunnel> tunnels;
    for (std::size_t at = 0; at < GetParam().states.size(); ++at) {
        tunnels.push_back(bench.add(tunnelNamed("t" + std::to_string(at))));
    }
    TunnelTally watching(bench.store, bench.manager, bench.dispatch);
    // Those that connect come last, since time passes for the others.
    for (const bool connecting : {false, true}) {
        for (std::size_t at = 0; at < tunnels.size(); ++at) {
            if ((GetParam().states[at] == State::connecting) == connecting) {
                bringTo(bench, tunnels[at], GetParam().states[at]);
            }
        }
    }
    const TunnelTally anew(bench.store, bench.manager, bench.dispatch);
    for (const TunnelTally* tally : std::initializer_list<const TunnelTally*>{&watching, &anew}) {
        EXPECT_EQ(tally->activeTunnelCount(), GetParam().active);
        EXPECT_EQ(tally->hasError(), GetParam().hasError);
        EXPECT_EQ(tally->total(), tunnels.size());
        EXPECT_EQ(tally->summaryText(), GetParam().summary);
        EXPECT_EQ(MenuBarIconView::symbolFor(*tally), GetParam().symbol);
    }
}

using enum State;
INSTANTIATE_TEST_SUITE_P(
    Table, TallyTable,
    testing::Values(
        TallyRow{"NoTunnels", {}, 0, false, "No active tunnels", MenuBarSymbol::networkSlash},
        TallyRow{
            "NoneTouched", {untouched, untouched}, 0, false, "No active tunnels", MenuBarSymbol::networkSlash},
        TallyRow{"OneConnecting", {connecting}, 1, false, "All tunnels connected", MenuBarSymbol::network},
        TallyRow{
            "AllConnected", {connected, connected}, 2, false, "All tunnels connected", MenuBarSymbol::network},
        TallyRow{
            "ConnectedAndError", {connected, failed}, 1, true, "1/2 connected", MenuBarSymbol::networkShield},
        TallyRow{"ErrorAlone", {failed}, 0, true, "No active tunnels", MenuBarSymbol::networkShield},
        TallyRow{"Stopped", {stopped, stopped}, 0, false, "No active tunnels", MenuBarSymbol::networkSlash},
        TallyRow{"TwoOfFive",
                 {connected, untouched, connecting, stopped, untouched},
                 2,
                 false,
                 "2/5 connected",
                 MenuBarSymbol::network}),
    [](const auto& row) { return row.param.name; });

struct TallyTest : testing::Test {
    MenuBarBench bench;
};

TEST_F(TallyTest, FollowsTunnelsThatComeAndGo) {
    const Tunnel up = bench.add(tunnelNamed("up"));
    bench.connected(up);
    TunnelTally tally(bench.store, bench.manager, bench.dispatch);
    EXPECT_EQ(tally.summaryText(), "All tunnels connected");
    bench.add(tunnelNamed("idle"));
    EXPECT_EQ(tally.summaryText(), "1/2 connected");
    bench.store.remove(up.id);
    bench.settle();
    EXPECT_EQ(tally.summaryText(), "No active tunnels");
}

TEST_F(TallyTest, TunnelsOfOneIdCountEach) {
    const Tunnel twin = bench.add(tunnelNamed("twin"));
    bench.add(twin);
    TunnelTally tally(bench.store, bench.manager, bench.dispatch);
    bench.connected(twin);
    EXPECT_EQ(tally.activeTunnelCount(), 2U);
    EXPECT_EQ(tally.summaryText(), "All tunnels connected");
}

TEST_F(TallyTest, TellsOnceForABurstAndNotAtAllForNothing) {
    std::vector<Tunnel> tunnels;
    for (int at = 0; at < 20; ++at) {
        tunnels.push_back(bench.add(tunnelNamed("t")));
    }
    TunnelTally tally(bench.store, bench.manager, bench.dispatch);
    int told = 0;
    const auto subscription = tally.changed.connect([&] { ++told; });
    for (const Tunnel& tunnel : tunnels) {
        bench.manager.statusChanged.emit(tunnel.id);
    }
    bench.store.announceChange();
    bench.settle();
    EXPECT_EQ(told, 0);
    for (const Tunnel& tunnel : tunnels) {
        bench.manager.connect(tunnel, bench.store);
    }
    bench.settle();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(tally.activeTunnelCount(), 20U);
    // From connecting to connected nothing that is counted changes.
    bench.dispatch.advance(TunnelManager::kConfirmDelay);
    EXPECT_EQ(told, 1);
}

TEST_F(TallyTest, AStatusOfATunnelThatIsNotInTheCatalogueIsNotCounted) {
    TunnelTally tally(bench.store, bench.manager, bench.dispatch);
    bench.connected(tunnelNamed("stranger"));
    EXPECT_EQ(tally.activeTunnelCount(), 0U);
}

TEST_F(TallyTest, TheIconIsTouchedOnlyWhenItChanges) {
    const Tunnel first = bench.add(tunnelNamed("first"));
    const Tunnel second = bench.add(tunnelNamed("second"));
    TunnelTally tally(bench.store, bench.manager, bench.dispatch);
    std::vector<MenuBarIconView::Look> looks;
    std::vector<bool> drawn;
    MenuBarIconView view(bench.theme, tally, [&](const auto& look, bool drawsAnew) {
        looks.push_back(look);
        drawn.push_back(drawsAnew);
    });
    bench.connected(first);
    bench.connected(second);
    bench.failed(tunnelNamed("stranger"));
    bench.theme.setAppearance(Appearance::dark);
    bench.theme.setAppearance(Appearance::dark);
    using Look = MenuBarIconView::Look;
    EXPECT_EQ(looks, (std::vector<Look>{
                         {MenuBarSymbol::networkSlash, Appearance::light, QStringLiteral("No active tunnels")},
                         {MenuBarSymbol::network, Appearance::light, QStringLiteral("1/2 connected")},
                         {MenuBarSymbol::network, Appearance::light, QStringLiteral("All tunnels connected")},
                         {MenuBarSymbol::network, Appearance::dark, QStringLiteral("All tunnels connected")}}));
    EXPECT_EQ(drawn, (std::vector{true, true, false, true}));
}

// The settings window offers it, and it changes nothing here.
TEST_F(TallyTest, ShowStatusInMenuBarIsNotRead) {
    bench.defaults.set("showStatusInMenuBar", {false});
    bench.connected(bench.add(tunnelNamed("up")));
    TunnelTally tally(bench.store, bench.manager, bench.dispatch);
    int shown = 0;
    MenuBarIconView view(bench.theme, tally, [&](const auto& look, bool /*drawsAnew*/) {
        ++shown;
        EXPECT_EQ(look.symbol, MenuBarSymbol::network);
    });
    EXPECT_EQ(shown, 1);
}

} // namespace
} // namespace fernwick::tests
