// The popover: its texts, sizes, rows, keyboard and footer.
#include "MenuBarBench.h"
#include "screens/menubar/MenuBarFooterButton.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QScrollBar>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

constexpr int kSlowMachine = 4; // how much slower than a user's the machine may be that runs the tests

// Counts how often each row of a list is painted.
class PaintedRows final : public QStyledItemDelegate {
public:
    explicit PaintedRows(int height) : height_(height) {}
    void paint(QPainter* /*painter*/, const QStyleOptionViewItem& /*option*/,
               const QModelIndex& index) const override {
        rows.push_back(index.row());
    }
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                                 const QModelIndex& /*index*/) const override {
        return {1, height_};
    }

    mutable std::vector<int> rows;

private:
    int height_;
};

class MenuBar : public testing::Test {
protected:
    std::vector<Tunnel> add(int count) {
        std::vector<Tunnel> added;
        for (int number = 1; number <= count; ++number) {
            Tunnel tunnel = tunnelNamed("Tunnel " + std::to_string(number));
            tunnel.localPort = std::to_string(8000 + number);
            bench.store.add(tunnel);
            added.push_back(tunnel);
        }
        bench.settle();
        return added;
    }

    [[nodiscard]] TunnelStatus::Kind kind(const Tunnel& tunnel) const {
        return bench.manager.status(tunnel.id).value_or(TunnelStatus::idle()).kind();
    }

    void key(int code) {
        QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(code));
        bench.settle();
    }

    [[nodiscard]] std::vector<const MenuBarFooterButton*> footerButtons() const {
        std::vector<const MenuBarFooterButton*> buttons;
        for (const auto* child : bench.popover->findChildren<QAbstractButton*>()) {
            if (const auto* button = dynamic_cast<const MenuBarFooterButton*>(child)) {
                buttons.push_back(button);
            }
        }
        return buttons;
    }

    [[nodiscard]] QStringList footer() const {
        QStringList labels;
        for (const auto* button : footerButtons()) {
            labels.append(button->text());
        }
        return labels;
    }

    MenuBarBench bench;
};

TEST_F(MenuBar, WithoutTunnelsItSaysSoAndItsButtonsDoNothing) {
    bench.openPopover();
    EXPECT_EQ(bench.summary(), QStringLiteral("No active tunnels"));
    EXPECT_TRUE(bench.part<QWidget>("popoverEmpty").isVisible());
    EXPECT_EQ(bench.part<QWidget>("popoverEmpty").findChild<QLabel*>()->text(),
              QStringLiteral("No tunnels configured"));
    EXPECT_FALSE(bench.list().isVisible());
    for (const char* name : {"connectAllButton", "disconnectAllButton"}) {
        EXPECT_TRUE(bench.part<QWidget>(name).isEnabled());
        bench.press(name);
    }
    EXPECT_TRUE(bench.processes.children().empty());
}

TEST_F(MenuBar, TheSecondLineIsFixed) {
    bench.openPopover();
    EXPECT_EQ(bench.part<QLabel>("popoverSignature").text(),
              QString::fromUtf8("Fernwick  \xC2\xB7  by Orla Venn"));
}

TEST_F(MenuBar, SummaryFollowsWhileItIsOpen) {
    const auto tunnels = add(2);
    bench.openPopover();
    bench.connected(tunnels[0]);
    EXPECT_EQ(bench.summary(), QStringLiteral("1/2 connected"));
    bench.failed(tunnels[1]);
    EXPECT_EQ(bench.summary(), QStringLiteral("1/2 connected"));
    bench.connecting(tunnels[1]);
    EXPECT_EQ(bench.summary(), QStringLiteral("All tunnels connected"));
}

struct HeightRow {
    int tunnels;
    int height;
};

class ListHeight : public testing::TestWithParam<HeightRow> {};

TEST_P(ListHeight, IsFortyTwoForEachTunnelUpToTheLimit) {
    MenuBarBench bench;
    for (int number = 0; number < GetParam().tunnels; ++number) {
        bench.store.add(tunnelNamed("t"));
    }
    bench.openPopover();
    EXPECT_EQ(bench.list().height(), GetParam().height);
    EXPECT_EQ(bench.popover->width(), 290);
}

INSTANTIATE_TEST_SUITE_P(Table, ListHeight,
                         testing::Values(HeightRow{1, 42}, HeightRow{2, 84}, HeightRow{8, 336},
                                         HeightRow{9, 360}, HeightRow{200, 360}),
                         [](const auto& row) { return std::to_string(row.param.tunnels); });

TEST_F(MenuBar, ASmallScreenShowsFewerRows) {
    add(9);
    auto& popover = bench.openPopover();
    const int whole = popover.sizeHint().height();
    popover.setHeightLimit(whole - 100);
    EXPECT_EQ(bench.list().height(), 260);
    EXPECT_EQ(popover.sizeHint().height(), whole - 100);
    popover.setHeightLimit(whole);
    EXPECT_EQ(bench.list().height(), 360);
}

TEST_F(MenuBar, EndpointIsTheHostAndThePortIfThereIsOne) {
    Tunnel tunnel = tunnelNamed("t", "u", "example.com");
    EXPECT_EQ(endpointLabel(tunnel), "example.com");
    tunnel.localPort = "8080";
    EXPECT_EQ(endpointLabel(tunnel), "example.com-8080");
}

TEST_F(MenuBar, RowsAreInTheCataloguesOrderAndReadAloud) {
    bench.add(tunnelNamed("zebra"));
    const Tunnel ape = bench.add(tunnelNamed("ape", "u", "jungle.example"));
    bench.connected(ape);
    bench.openPopover();
    const auto* model = bench.list().model();
    EXPECT_EQ(model->index(0, 0).data().toString(), QStringLiteral("zebra"));
    EXPECT_EQ(model->index(1, 0).data(Qt::AccessibleTextRole).toString(),
              QStringLiteral("ape, Connected, jungle.example"));
    EXPECT_EQ(bench.list().accessibleName(), QStringLiteral("Tunnels"));
}

TEST_F(MenuBar, ConnectAllStartsWhatIsNotUpInOrder) {
    const auto tunnels = add(4);
    bench.connected(tunnels[1]);
    bench.failed(tunnels[2]);
    const auto before = bench.processes.launched().size();
    bench.openPopover();
    bench.press("connectAllButton");
    EXPECT_EQ(bench.processes.launched().size() - before, 3U);
    EXPECT_EQ(kind(tunnels[0]), TunnelStatus::Kind::connecting);
    EXPECT_EQ(kind(tunnels[1]), TunnelStatus::Kind::connected);
    EXPECT_EQ(kind(tunnels[2]), TunnelStatus::Kind::connecting);
    EXPECT_EQ(bench.summary(), QStringLiteral("All tunnels connected"));
    bench.press("connectAllButton");
    EXPECT_EQ(bench.processes.launched().size() - before, 3U);
}

TEST_F(MenuBar, DisconnectAllStopsEveryTunnelWhateverItsState) {
    const auto tunnels = add(3);
    bench.connected(tunnels[0]);
    bench.failed(tunnels[1]);
    bench.connecting(tunnels[2]);
    bench.openPopover();
    bench.press("disconnectAllButton");
    bench.dispatch.advance(10s);
    bench.settle();
    EXPECT_EQ(bench.processes.runningCount(), 0U);
    EXPECT_EQ(bench.summary(), QStringLiteral("No active tunnels"));
    EXPECT_FALSE(bench.tally->hasError());
}

TEST_F(MenuBar, OnlyTheRowUnderThePointerHasAButton) {
    const auto tunnels = add(3);
    bench.openPopover();
    bench.leave();
    EXPECT_FALSE(bench.rowButton().isVisible());
    bench.hover(1);
    EXPECT_EQ(bench.list().litRow(), 1);
    EXPECT_TRUE(bench.rowButton().isVisible());
    EXPECT_FALSE(bench.rowButton().stops());
    EXPECT_EQ(bench.rowButton().accessibleName(), QStringLiteral("Connect Tunnel 2"));
    bench.rowButton().click();
    bench.settle();
    EXPECT_EQ(kind(tunnels[1]), TunnelStatus::Kind::connecting);
    EXPECT_TRUE(bench.rowButton().stops());
    EXPECT_EQ(bench.rowButton().accessibleName(), QStringLiteral("Disconnect Tunnel 2"));
    bench.rowButton().click();
    bench.settle();
    EXPECT_FALSE(bench.manager.isActive(tunnels[1].id));
    bench.leave();
    EXPECT_FALSE(bench.rowButton().isVisible());
}

TEST_F(MenuBar, AClickBesideTheButtonStartsNothing) {
    const auto tunnels = add(1);
    bench.openPopover();
    bench.hover(0);
    const QPoint middle = bench.list().visualRect(bench.list().model()->index(0, 0)).center();
    QTest::mouseClick(bench.list().viewport(), Qt::LeftButton, {}, middle);
    QTest::mouseDClick(bench.list().viewport(), Qt::LeftButton, {}, middle);
    bench.settle();
    EXPECT_FALSE(bench.manager.isActive(tunnels[0].id));
}

TEST_F(MenuBar, ArrowsGoThroughTheRowsAndReturnToggles) {
    const auto tunnels = add(3);
    bench.openPopover().activateWindow();
    bench.leave();
    key(Qt::Key_Return);
    EXPECT_EQ(bench.processes.launched().size(), 0U) << "no row is chosen yet";
    key(Qt::Key_Down);
    key(Qt::Key_Down);
    EXPECT_EQ(bench.list().litRow(), 1);
    EXPECT_TRUE(bench.rowButton().isVisible());
    key(Qt::Key_Return);
    EXPECT_TRUE(bench.manager.isActive(tunnels[1].id));
    key(Qt::Key_Space);
    EXPECT_FALSE(bench.manager.isActive(tunnels[1].id));
    key(Qt::Key_Up);
    EXPECT_EQ(bench.list().litRow(), 0);
}

TEST_F(MenuBar, TabGoesThroughEverything) {
    add(1);
    bench.openPopover().activateWindow();
    QStringList visited;
    for (int step = 0; step < 7; ++step) {
        visited.append(QApplication::focusWidget()->objectName());
        key(Qt::Key_Tab);
    }
    EXPECT_EQ(visited, (QStringList{QStringLiteral("popoverTunnelList"), QStringLiteral("proxyRulesEntry"),
                                    QStringLiteral("openMainWindowEntry"), QStringLiteral("preferencesEntry"),
                                    QStringLiteral("quitEntry"), QStringLiteral("connectAllButton"),
                                    QStringLiteral("disconnectAllButton")}));
}

TEST_F(MenuBar, EveryControlHasANameAndARole) {
    add(1);
    auto& popover = bench.openPopover();
    for (auto* button : popover.findChildren<QAbstractButton*>()) {
        auto* spoken = QAccessible::queryAccessibleInterface(button);
        EXPECT_EQ(spoken->role(), QAccessible::Button);
        EXPECT_FALSE(spoken->text(QAccessible::Name).isEmpty() && button->isVisible())
            << button->objectName().toStdString();
    }
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&bench.list())->role(), QAccessible::List);
}

TEST_F(MenuBar, FooterStandsInItsOrderAndTheLastEntryIsDestructive) {
    bench.openPopover();
    EXPECT_EQ(footer(), (QStringList{QStringLiteral("Proxies & Rules..."), QStringLiteral("Open Main Window"),
                                     QStringLiteral("Preferences..."), QStringLiteral("Quit Fernwick")}));
    for (const auto* button : footerButtons()) {
        EXPECT_EQ(button->isDestructive(), button->text() == QStringLiteral("Quit Fernwick"));
    }
}

TEST_F(MenuBar, AnActionThatIsNotSetHidesItsEntry) {
    auto actions = bench.recordingActions();
    actions.openSettings = nullptr;
    actions.openProxyRules = nullptr;
    bench.makeCommands(actions);
    bench.openPopover();
    EXPECT_EQ(footer(), (QStringList{QStringLiteral("Open Main Window"), QStringLiteral("Quit Fernwick")}));
}

TEST_F(MenuBar, WindowsOpenWhenThePopoverHasFallenAway) {
    const auto tunnels = add(2);
    bench.openPopover();
    int chosen = 0;
    bench.popover->onEntryChosen = [&] { ++chosen; };
    bench.press("openMainWindowEntry");
    bench.press("proxyRulesEntry");
    bench.store.remove(tunnels[0].id); // the list is that of the click
    bench.dispatch.advance(149ms);
    EXPECT_TRUE(bench.calls.empty() && bench.asked.empty());
    bench.dispatch.advance(1ms);
    EXPECT_THAT(bench.calls, ElementsAre("main window"));
    EXPECT_THAT(bench.asked, ElementsAre(ElementsAre(TunnelName{tunnels[0].id, "Tunnel 1"},
                                                     TunnelName{tunnels[1].id, "Tunnel 2"})));
    EXPECT_EQ(chosen, 2);
}

TEST_F(MenuBar, PreferencesAndQuitActAtOnce) {
    bench.openPopover();
    bench.press("preferencesEntry");
    bench.press("quitEntry");
    EXPECT_THAT(bench.calls, ElementsAre("settings", "quit"));
}

TEST_F(MenuBar, AnEntryWhosePopoverIsGoneOpensNothing) {
    bench.openPopover();
    bench.press("openMainWindowEntry");
    bench.popover.reset();
    bench.commands.reset();
    bench.dispatch.advance(1s);
    EXPECT_TRUE(bench.calls.empty());
}

TEST_F(MenuBar, AStatusRepaintsItsRowAlone) {
    const auto tunnels = add(8);
    bench.openPopover();
    bench.leave();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(bench.popover.get()));
    PaintedRows painted(PopoverTunnelRow::kHeight);
    bench.list().setItemDelegate(&painted);
    ASSERT_TRUE(QTest::qWaitFor([&] { return painted.rows.size() >= 8; }));
    QTest::qWait(1); // the paintings that the pointer's leave asked for
    painted.rows.clear();
    bench.manager.connect(tunnels[5], bench.store);
    bench.dispatch.runAll();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !painted.rows.empty(); }));
    EXPECT_THAT(painted.rows, testing::Each(5));
    bench.popover->close();
}

TEST_F(MenuBar, HiddenItDoesNothing) {
    const auto tunnels = add(3);
    auto& popover = bench.openPopover();
    popover.hide();
    int changes = 0;
    const auto* model = bench.list().model();
    QObject::connect(model, &QAbstractItemModel::dataChanged, &popover, [&] { ++changes; });
    QObject::connect(model, &QAbstractItemModel::modelReset, &popover, [&] { ++changes; });
    bench.connected(tunnels[0]);
    add(2);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(bench.summary(), QStringLiteral("No active tunnels"));
    popover.refresh();
    popover.show();
    EXPECT_EQ(bench.summary(), QStringLiteral("1/5 connected"));
    EXPECT_EQ(model->rowCount(), 5);
}

TEST_F(MenuBar, AnEditAndADeletionAreTakenOver) {
    const auto tunnels = add(3);
    bench.openPopover();
    Tunnel edited = tunnels[2];
    edited.name = "renamed";
    bench.store.update(edited);
    bench.settle();
    EXPECT_EQ(bench.list().model()->index(2, 0).data().toString(), QStringLiteral("renamed"));
    for (const Tunnel& tunnel : tunnels) {
        bench.store.remove(tunnel.id);
    }
    bench.settle();
    EXPECT_TRUE(bench.part<QWidget>("popoverEmpty").isVisible());
}

// The first painting of all, on a machine that does other things too.
TEST_F(MenuBar, TwoHundredTunnelsArePaintedAtOnce) {
    add(200);
    bench.makeCommands(bench.recordingActions());
    QElapsedTimer clock;
    clock.start();
    bench.openPopover().grab();
    const auto took = clock.elapsed();
    std::printf("popover with 200 tunnels: %lld ms\n", static_cast<long long>(took));
    EXPECT_LT(took, kSlowMachine * 50) << "milliseconds";
}

} // namespace
} // namespace fernwick::tests
