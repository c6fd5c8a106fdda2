// The main window as a whole: selection, creating, deleting, reloading, columns, menus.
#include "Bench.h"
#include "screens/main/AddTunnelSheet.h"
#include "screens/main/DeleteConfirmation.h"
#include "screens/main/SidebarView.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class Content : public testing::Test {
protected:
    Content() { bench.open(); }

    QListView& list() { return bench.find<QListView>("tunnelList"); }

    void choose(int row) {
        list().setCurrentIndex(list().model()->index(row, 0));
        bench.settle();
    }

    [[nodiscard]] bool shows(const char* name) const { return bench.find<QWidget>(name).isVisible(); }

    // Opens the sheet and fills it in; null texts are left alone.
    void fill(const char* name, const char* host, const char* user, const char* port) {
        bench.find<QToolButton>("addTunnelButton").click();
        bench.find<QLineEdit>("tunnelNameField").setText(QString::fromUtf8(name));
        bench.find<QLineEdit>("hostField").setText(QString::fromUtf8(host));
        bench.find<QLineEdit>("usernameField").setText(QString::fromUtf8(user));
        bench.find<QLineEdit>("localPortField").setText(QString::fromUtf8(port));
    }

    [[nodiscard]] bool canCreate() const { return bench.find<QPushButton>("createTunnelButton").isEnabled(); }

    [[nodiscard]] bool sheetIsUp() const { return bench.state().showingAddSheet; }

    void press(const char* button) {
        bench.find<QPushButton>(button).click();
        bench.settle();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void askToDelete(int row) {
        choose(row);
        QTest::keyClick(&list(), Qt::Key_Delete);
        bench.settle();
    }

    Bench bench;
};

TEST_F(Content, StartsWithNothingChosen) {
    EXPECT_TRUE(shows("emptyDetail"));
    EXPECT_EQ(bench.state().selectedTunnelID, std::nullopt);
    EXPECT_EQ(bench.window->windowTitle(), QStringLiteral("Fernwick"));
    EXPECT_EQ(bench.window->minimumSize(), QSize(900, 600));
}

TEST_F(Content, TheSelectionDecidesWhatTheDetailShows) {
    const auto first = bench.add(tunnelNamed("first", "root", "a.example"));
    const auto second = bench.add(tunnelNamed("second"));
    choose(0);
    EXPECT_EQ(bench.state().selectedTunnelID, first.id);
    EXPECT_TRUE(shows("tunnelDetail"));
    EXPECT_EQ(bench.find<QLabel>("detailName").text(), QStringLiteral("first"));
    EXPECT_EQ(bench.find<QLabel>("detailLogin").text(), QStringLiteral("root@a.example:22"));
    choose(1);
    EXPECT_EQ(bench.state().selectedTunnelID, second.id);
    EXPECT_EQ(bench.find<QLabel>("detailName").text(), QStringLiteral("second"));
}

TEST_F(Content, ASearchThatHidesTheSelectionKeepsIt) {
    const auto first = bench.add(tunnelNamed("first"));
    bench.add(tunnelNamed("second"));
    choose(0);
    auto& search = bench.find<QLineEdit>("sidebarSearchField");
    QTest::keyClicks(&search, QStringLiteral("second"));
    EXPECT_EQ(bench.state().selectedTunnelID, first.id);
    EXPECT_TRUE(shows("tunnelDetail"));
    EXPECT_FALSE(list().selectionModel()->hasSelection());
    QTest::keyClick(&search, Qt::Key_Escape);
    EXPECT_TRUE(list().selectionModel()->isRowSelected(0));
}

TEST_F(Content, TheSheetCreatesATunnelWithItsDefaults) {
    fill("", "db.example.com", "root", "");
    EXPECT_TRUE(canCreate());
    press("createTunnelButton");
    EXPECT_FALSE(sheetIsUp());
    ASSERT_EQ(bench.store.tunnels().size(), 1U);
    const Tunnel& tunnel = bench.store.tunnels().front();
    EXPECT_EQ(tunnel.name, "New Tunnel");
    EXPECT_EQ(tunnel.sshPort, "22");
    EXPECT_EQ(tunnel.localPort, "");
    EXPECT_EQ(tunnel.authMethod, AuthMethod::privateKey);
    EXPECT_EQ(tunnel.identityKeyID, std::nullopt);
    EXPECT_EQ(tunnel.createdAt, bench.clock.now());
    EXPECT_EQ(bench.state().selectedTunnelID, tunnel.id);
    EXPECT_TRUE(shows("tunnelDetail"));
    EXPECT_TRUE(list().selectionModel()->isRowSelected(0));
}

TEST_F(Content, CreateNeedsHostAndUserAndNothingElse) {
    fill("name", "", "", "8080");
    EXPECT_FALSE(canCreate());
    bench.find<QLineEdit>("hostField").setText(QStringLiteral(" "));
    EXPECT_FALSE(canCreate());
    bench.find<QLineEdit>("usernameField").setText(QStringLiteral("u"));
    EXPECT_TRUE(canCreate());
    bench.find<QLineEdit>("hostField").clear();
    EXPECT_FALSE(canCreate());
    QTest::keyClick(&bench.find<QLineEdit>("hostField"), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(bench.store.tunnels().empty());
    EXPECT_TRUE(sheetIsUp());
}

TEST_F(Content, TheSheetTakesWhatIsTypedAsItIs) {
    fill(" Web ", " host ", "u ser", "not a port");
    press("createTunnelButton");
    const Tunnel& tunnel = bench.store.tunnels().front();
    EXPECT_EQ(tunnel.name, " Web ");
    EXPECT_EQ(tunnel.host, " host ");
    EXPECT_EQ(tunnel.user, "u ser");
    EXPECT_EQ(tunnel.localPort, "not a port");
}

TEST_F(Content, TheSheetHasItsFieldsInOrder) {
    bench.find<QToolButton>("addTunnelButton").click();
    auto& sheet = bench.find<AddTunnelSheet>("addTunnelSheet");
    EXPECT_EQ(sheet.width(), 420);
    EXPECT_EQ(bench.find<QLineEdit>("localPortField").width(), 100);
    const std::vector<std::array<QString, 3>> expected{
        {QStringLiteral("tunnelNameField"), QStringLiteral("Tunnel Name"), QStringLiteral("My Server Tunnel")},
        {QStringLiteral("hostField"), QStringLiteral("Host / IP"), QStringLiteral("example.com")},
        {QStringLiteral("usernameField"), QStringLiteral("Username"), QStringLiteral("ubuntu")},
        {QStringLiteral("localPortField"), QStringLiteral("Local Port"), QStringLiteral("8080")}};
    int above = -1;
    for (const auto& [name, label, placeholder] : expected) {
        auto* field = sheet.findChild<QLineEdit*>(name);
        ASSERT_NE(field, nullptr);
        EXPECT_EQ(field->accessibleName(), label);
        EXPECT_EQ(field->placeholderText(), placeholder);
        EXPECT_GT(field->y(), above);
        above = field->y();
    }
}

TEST_F(Content, EscapeAndCancelCloseTheSheet) {
    fill("n", "h", "u", "1");
    press("cancelButton");
    EXPECT_FALSE(sheetIsUp());
    fill("n", "h", "u", "1");
    QTest::keyClick(&bench.find<AddTunnelSheet>("addTunnelSheet"), Qt::Key_Escape);
    EXPECT_FALSE(sheetIsUp());
    EXPECT_TRUE(bench.store.tunnels().empty());
}

TEST_F(Content, ControlReturnCreates) {
    fill("n", "h", "u", "1");
    auto& field = bench.find<QLineEdit>("hostField");
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_TRUE(sheetIsUp());
    QApplication::setActiveWindow(&bench.find<AddTunnelSheet>("addTunnelSheet"));
    QTest::keyClick(&field, Qt::Key_Return, Qt::ControlModifier);
    bench.settle();
    EXPECT_FALSE(sheetIsUp());
    EXPECT_EQ(bench.store.tunnels().size(), 1U);
}

TEST_F(Content, TheEmptyDetailOpensTheSheetOnce) {
    bench.find<QPushButton>("createNewTunnelButton").click();
    bench.find<QToolButton>("addTunnelButton").click();
    EXPECT_TRUE(sheetIsUp());
    EXPECT_EQ(bench.window->findChildren<AddTunnelSheet*>().size(), 1);
}

TEST_F(Content, TheConfirmationSaysWhatIsDeleted) {
    bench.add(tunnelNamed("Prod <b>\"1\"</b>"));
    askToDelete(0);
    auto& question = bench.find<DeleteConfirmation>("deleteConfirmation");
    EXPECT_EQ(question.windowTitle(), QStringLiteral("Delete Tunnel"));
    EXPECT_EQ(
        bench.find<QLabel>("deleteConfirmationText").text(),
        QStringLiteral("Are you sure you want to delete \"Prod <b>\"1\"</b>\"? This action cannot be undone."));
    EXPECT_EQ(bench.find<QPushButton>("deleteConfirmButton").text(), QStringLiteral("Delete"));
    EXPECT_EQ(bench.find<QPushButton>("deleteCancelButton").text(), QStringLiteral("Cancel"));
    EXPECT_TRUE(bench.state().showingDeleteAlert);
    EXPECT_EQ(bench.state().tunnelToDelete, bench.store.tunnels().front());
}

TEST_F(Content, DeletingTheSelectedTunnelClearsTheSelection) {
    bench.add(tunnelNamed("first"));
    bench.add(tunnelNamed("second"));
    askToDelete(0);
    press("deleteConfirmButton");
    EXPECT_EQ(bench.store.tunnels().size(), 1U);
    EXPECT_EQ(bench.state().selectedTunnelID, std::nullopt);
    EXPECT_FALSE(bench.state().showingDeleteAlert);
    EXPECT_TRUE(shows("emptyDetail"));
    EXPECT_FALSE(list().selectionModel()->hasSelection());
}

TEST_F(Content, DeletingAnotherTunnelLeavesTheSelectionAlone) {
    bench.add(tunnelNamed("first"));
    const auto second = bench.add(tunnelNamed("second"));
    choose(1);
    QContextMenuEvent event(QContextMenuEvent::Mouse, list().visualRect(list().model()->index(0, 0)).center(),
                            QPoint());
    QApplication::sendEvent(list().viewport(), &event);
    auto* menu = bench.window->findChild<QMenu*>(QStringLiteral("tunnelMenu"));
    ASSERT_NE(menu, nullptr);
    menu->actions().last()->trigger();
    press("deleteConfirmButton");
    ASSERT_EQ(bench.store.tunnels().size(), 1U);
    EXPECT_EQ(bench.state().selectedTunnelID, second.id);
    EXPECT_EQ(bench.find<QLabel>("detailName").text(), QStringLiteral("second"));
    EXPECT_TRUE(list().selectionModel()->isRowSelected(0));
}

TEST_F(Content, DeletingStopsThenRemovesThenClears) {
    const auto tunnel = bench.add(tunnelNamed("web"));
    bench.connected(tunnel);
    std::vector<std::string> order;
    const auto status = bench.manager.statusChanged.connect([&](const auto&) { order.emplace_back("status"); });
    const auto store = bench.store.changed.connect([&] {
        order.emplace_back(bench.processes.last().terminations() == 1 ? "deleted after stop"
                                                                      : "deleted before stop");
        EXPECT_EQ(bench.state().selectedTunnelID, tunnel.id);
    });
    askToDelete(0);
    press("deleteConfirmButton");
    EXPECT_THAT(order, testing::ElementsAre("deleted after stop", "status"));
    EXPECT_EQ(bench.state().selectedTunnelID, std::nullopt);
}

TEST_F(Content, CancellingDeletesNothing) {
    bench.add(tunnelNamed("web"));
    askToDelete(0);
    press("deleteCancelButton");
    EXPECT_EQ(bench.store.tunnels().size(), 1U);
    EXPECT_EQ(bench.state().tunnelToDelete, std::nullopt);
    askToDelete(0);
    QTest::keyClick(&bench.find<DeleteConfirmation>("deleteConfirmation"), Qt::Key_Escape);
    EXPECT_EQ(bench.store.tunnels().size(), 1U);
    EXPECT_FALSE(bench.state().showingDeleteAlert);
}

TEST_F(Content, TheNotificationReloadsTheStore) {
    const auto tunnel = bench.add(tunnelNamed("web"));
    choose(0);
    bench.defaults.setData(TunnelStore::kDefaultsKey, "[]");
    bench.notifications.post(TunnelStore::kDidChangeNotification);
    bench.settle();
    EXPECT_EQ(list().model()->rowCount(), 0);
    EXPECT_TRUE(shows("emptyDetail"));
    EXPECT_EQ(bench.state().selectedTunnelID, tunnel.id);
}

TEST_F(Content, TheSidebarHidesAndComesBackForTheSearch) {
    auto& sidebar = bench.find<SidebarView>("sidebar");
    EXPECT_EQ(sidebar.width(), SidebarView::kIdealWidth);
    EXPECT_EQ(sidebar.minimumWidth(), 220);
    EXPECT_EQ(sidebar.maximumWidth(), 320);
    bench.find<QToolButton>("sidebarToggleButton").click();
    EXPECT_FALSE(sidebar.isVisible());
    EXPECT_EQ(bench.state().columnVisibility, ColumnVisibility::detailOnly);
    bench.window->content().focusSearch();
    EXPECT_TRUE(sidebar.isVisible());
    EXPECT_EQ(bench.window->focusWidget(), &bench.find<QLineEdit>("sidebarSearchField"));
}

TEST_F(Content, TheShellDecidesAboutTheClose) {
    bool answer = false;
    bench.window->shouldClose = [&] { return answer; };
    bench.window->close();
    EXPECT_TRUE(bench.window->isVisible());
    answer = true;
    bench.window->close();
    EXPECT_FALSE(bench.window->isVisible());
}

TEST_F(Content, EveryControlHasANameForTheEyeAndTheEar) {
    bench.add(tunnelNamed("web"));
    choose(0);
    bench.find<QToolButton>("addTunnelButton").click();
    for (const QWidget* widget : bench.window->findChildren<QWidget*>()) {
        const bool takesKeyboard = (widget->focusPolicy() & Qt::TabFocus) != 0;
        if (!takesKeyboard || !widget->isVisible() || widget->objectName().startsWith(QStringLiteral("qt_"))) {
            continue;
        }
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
        EXPECT_FALSE(widget->accessibleName().isEmpty() && (button == nullptr || button->text().isEmpty()))
            << widget->objectName().toStdString();
    }
}

} // namespace
} // namespace fernwick::tests
