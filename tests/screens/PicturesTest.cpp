// Pictures of every state of the main window, for eyes: they lie in the build folder, under pictures/. The test
// itself only says that each could be drawn and is not of one colour.
#include "Bench.h"
#include "screens/detail/TabButton.h"
#include "screens/main/AddTunnelSheet.h"
#include "screens/main/DeleteConfirmation.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

struct Shot {
    Appearance appearance;
    QSize size;
    const char* name;
};

class Pictures : public testing::TestWithParam<Shot> {
protected:
    Pictures() : bench(GetParam().appearance) {}

    void open() {
        bench.open().resize(GetParam().size);
        bench.settle();
    }

    void save(QWidget& widget, const char* name) {
        bench.settle();
        const QImage picture = widget.grab().toImage();
        bool varied = false;
        for (int y = 0; y < picture.height() && !varied; ++y) {
            varied = picture.pixel(picture.width() / 2, y) != picture.pixel(0, 0);
        }
        EXPECT_TRUE(varied) << name;
        const QString folder = QStringLiteral(FERNWICK_PICTURES);
        QDir().mkpath(folder);
        EXPECT_TRUE(
            picture.save(QStringLiteral("%1/%2-%3.png")
                             .arg(folder, QString::fromLatin1(name), QString::fromLatin1(GetParam().name))));
    }

    void addFour() {
        const auto& tags = bench.tags.tags();
        Tunnel web = tunnelNamed("Production DB", "deploy", "db1.internal.example.com");
        web.tagIDs = {tags[0].id, tags[3].id};
        web.localPort = "5432";
        web.remotePort = "5432";
        Tunnel staging = tunnelNamed("Staging web", "ubuntu", "staging.example.com");
        staging.tagIDs = {tags[1].id};
        staging.localPort = "8080";
        staging.remotePort = "80";
        Tunnel proxy = tunnelNamed("Office proxy", "anna", "gate.example.org");
        proxy.tunnelType = TunnelType::socks5;
        proxy.localPort = "1080";
        Tunnel home = tunnelNamed("Home server", "pi", "192.168.1.20");
        home.tunnelType = TunnelType::remoteForward;
        home.tagIDs = {tags[4].id};
        home.localPort = "3000";
        home.remotePort = "8443";
        for (const auto& tunnel : {web, staging, proxy, home}) {
            tunnels.push_back(bench.add(tunnel));
        }
        bench.connected(tunnels[0]);
        bench.processes.failNextLaunch({2, "No such file or directory"});
        bench.manager.connect(tunnels[3], bench.store);
        bench.settle();
        bench.manager.connect(tunnels[1], bench.store);
        bench.settle();
    }

    void choose(int row) {
        auto& list = bench.find<QListView>("tunnelList");
        list.setCurrentIndex(list.model()->index(row, 0));
        bench.settle();
    }

    void turnTo(const char* tab) { bench.find<TabButton>(tab).click(); }

    void edit(const Tunnel& tunnel) {
        bench.store.update(tunnel);
        bench.settle();
    }

    void scrollTo(const char* page, int value) {
        auto* bar = bench.find<QScrollArea>(page).verticalScrollBar();
        bar->setValue(value < 0 ? bar->maximum() : value);
    }

    Bench bench;
    std::vector<Tunnel> tunnels;
};

TEST_P(Pictures, Configuration) {
    open();
    addFour();
    choose(0);
    save(*bench.window, "config");
    scrollTo("configTab", 200);
    save(*bench.window, "config-middle");
    scrollTo("configTab", -1);
    save(*bench.window, "config-end");
    choose(2);
    scrollTo("configTab", -1);
    save(*bench.window, "config-socks");
}

TEST_P(Pictures, Authentication) {
    open();
    addFour();
    choose(1);
    Tunnel tunnel = *bench.store.find(tunnels[1].id);
    tunnel.authMethod = AuthMethod::password;
    bench.keychain.saveTunnelPassword(support::Secret("correct horse"), tunnel.id);
    edit(tunnel);
    scrollTo("configTab", 200);
    save(*bench.window, "config-password");
    tunnel.authMethod = AuthMethod::agent;
    edit(tunnel);
    save(*bench.window, "config-agent");
    tunnel.authMethod = AuthMethod::privateKey;
    edit(tunnel);
    bench.find<QPushButton>("addKeyButton").click();
    bench.dialogs.answer("/home/anna/.ssh/id_ed25519");
    save(*bench.window, "config-key-added");
    bench.keys.add({support::Uuid::random(), "work_rsa.pem", "/home/anna/work_rsa.pem", "", {}});
    bench.find<QComboBox>("keyMenu").showPopup();
    save(*QApplication::activePopupWidget(), "menu-keys");
    bench.find<QComboBox>("keyMenu").hidePopup();
    bench.find<QComboBox>("typeMenu").showPopup();
    save(*QApplication::activePopupWidget(), "menu-types");
}

TEST_P(Pictures, Advanced) {
    open();
    addFour();
    choose(0);
    turnTo("advancedTabButton");
    bench.find<QToolButton>("copyCommandButton").click();
    save(*bench.window, "advanced");
    Tunnel tunnel = *bench.store.find(tunnels[0].id);
    tunnel.host = std::string(900, 'h') + ".example.com";
    tunnel.keepAliveInterval = 3600;
    tunnel.compression = true;
    tunnel.reconnectOnFailure = false;
    edit(tunnel);
    bench.find<QCheckBox>("compressionSwitch").setFocus(Qt::TabFocusReason);
    save(*bench.window, "advanced-long");
}

TEST_P(Pictures, Empty) {
    open();
    save(*bench.window, "empty");
}

TEST_P(Pictures, FourTunnels) {
    open();
    addFour();
    save(*bench.window, "four");
}

TEST_P(Pictures, SelectedWithLog) {
    open();
    addFour();
    bench.processes.launched().front()->emitStandardError(
        "Warning: Permanently added 'db1.internal.example.com' (ED25519) to the list of known hosts.\n"
        "channel 2: open failed: administratively prohibited: open failed\n");
    bench.settle();
    choose(0);
    turnTo("logsTabButton");
    save(*bench.window, "selected");
    choose(1);
    save(*bench.window, "connecting");
    choose(3);
    save(*bench.window, "error");
}

TEST_P(Pictures, RetriesInTheLog) {
    open();
    addFour();
    bench.manager.logs().clear(tunnels[0].id);
    choose(0);
    turnTo("logsTabButton");
    auto& first = *bench.processes.launched().front();
    first.emitStandardError("client_loop: send disconnect: Broken pipe\n");
    first.exit(255);
    bench.settle();
    bench.dispatch.advance(Reconnector::kReconnectDelay);
    bench.processes.last().emitStandardError(
        "ssh: connect to host db1.internal.example.com port 22: No route to host\n");
    bench.settle();
    bench.processes.last().exit(255);
    bench.settle();
    save(*bench.window, "retrying");
}

TEST_P(Pictures, NoLog) {
    open();
    addFour();
    choose(2);
    turnTo("logsTabButton");
    save(*bench.window, "nolog");
}

TEST_P(Pictures, LongAndForeignNames) {
    open();
    bench.add(tunnelNamed("A very long name for a tunnel that does not fit into any sidebar at all",
                          "a.very.long.user.name", "a-host-name-that-is-also-long.example.com"));
    bench.add(tunnelNamed("שרת הייצור", "מנהל", "example.co.il"));
    bench.add(tunnelNamed("خادم الإنتاج الرئيسي في مركز البيانات الأول بالقاهرة", "admin", "example.com"));
    bench.add(tunnelNamed("生产数据库 🚀", "管理员", "例え.jp"));
    bench.add(tunnelNamed("line one\nline two\ttab", "root", "10.0.0.1"));
    bench.add(tunnelNamed(std::string(10000, 'x')));
    choose(2);
    save(*bench.window, "names");
    choose(4);
    save(*bench.window, "names-lines");
    choose(5);
    scrollTo("configTab", -1);
    save(*bench.window, "names-long");
}

TEST_P(Pictures, NoResults) {
    open();
    addFour();
    QTest::keyClicks(&bench.find<QLineEdit>("sidebarSearchField"), QStringLiteral("nothing"));
    save(*bench.window, "noresults");
}

TEST_P(Pictures, Sheet) {
    open();
    bench.find<QToolButton>("addTunnelButton").click();
    save(bench.find<AddTunnelSheet>("addTunnelSheet"), "sheet");
    QTest::keyClicks(&bench.find<QLineEdit>("hostField"), QStringLiteral("db.example.com"));
    QTest::keyClicks(&bench.find<QLineEdit>("usernameField"), QStringLiteral("ubuntu"));
    save(bench.find<AddTunnelSheet>("addTunnelSheet"), "sheet-filled");
}

TEST_P(Pictures, Confirmation) {
    open();
    addFour();
    choose(0);
    QTest::keyClick(&bench.find<QListView>("tunnelList"), Qt::Key_Delete);
    save(bench.find<DeleteConfirmation>("deleteConfirmation"), "confirmation");
}

INSTANTIATE_TEST_SUITE_P(Both, Pictures,
                         testing::Values(Shot{Appearance::light, {900, 600}, "light-900"},
                                         Shot{Appearance::dark, {900, 600}, "dark-900"},
                                         Shot{Appearance::light, {1440, 900}, "light-1440"},
                                         Shot{Appearance::dark, {1440, 900}, "dark-1440"}),
                         [](const auto& info) {
                             std::string name = info.param.name;
                             name.erase(name.find('-'), 1);
                             return name;
                         });

} // namespace
} // namespace fernwick::tests
