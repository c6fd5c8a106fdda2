// The tab "Advanced": slider, switches and the preview of the command.
#include "DetailBench.h"
#include "screens/detail/KeepAliveSlider.h"
#include "screens/detail/SSHCommandPreview.h"
#include "screens/theme/Parts.h"
#include "screens/theme/Switch.h"

#include <QTextEdit>
#include <QToolButton>

namespace fernwick::tests {
namespace {

using namespace std::chrono_literals;

class AdvancedTab : public DetailTest {
protected:
    AdvancedTab() { turnTo("advancedTabButton"); }

    KeepAliveSlider& slider() { return bench.find<KeepAliveSlider>("keepAliveSlider"); }
    Switch& reconnect() { return bench.find<Switch>("autoReconnectSwitch"); }
    Switch& compression() { return bench.find<Switch>("compressionSwitch"); }
    QString preview() { return bench.find<QTextEdit>("sshCommandText").toPlainText(); }
    QToolButton& copyButton() { return bench.find<QToolButton>("copyCommandButton"); }
    bool copied() { return bench.find<SSHCommandPreview>("sshCommandPreview").copied(); }
    bool copyButtonShows(Icon icon, NamedColor color) {
        const auto drawn = [](const QIcon& each) { return each.pixmap(20).toImage(); };
        return drawn(copyButton().icon()) == drawn(themedIcon(bench.theme, icon, color));
    }
};

TEST_F(AdvancedTab, HasItsSectionsAndCaptions) {
    QStringList texts;
    for (const auto* each : bench.find<QWidget>("advancedTab").findChildren<QLabel*>()) {
        texts.append(each->text());
    }
    for (const char* wanted :
         {"Connection", "Keep-Alive (sec)", "60s", "Auto Reconnect", "Retry up to 5 times on failure",
          "Compression", "Enable SSH compression (-C flag)", "SSH Command Preview"}) {
        EXPECT_TRUE(texts.contains(QString::fromLatin1(wanted))) << wanted;
    }
}

TEST_F(AdvancedTab, TheSliderGoesInSteps) {
    EXPECT_EQ(slider().minimum(), 10);
    EXPECT_EQ(slider().maximum(), 300);
    EXPECT_EQ(slider().value(), 60);
    EXPECT_EQ(slider().width(), 150);
    EXPECT_EQ(slider().accessibleName(), QStringLiteral("Keep-Alive (sec)"));
    QTest::keyClick(&slider(), Qt::Key_Right);
    EXPECT_EQ(stored().keepAliveInterval, 70);
    EXPECT_EQ(label("keepAliveText"), QStringLiteral("70s"));
    QTest::keyClick(&slider(), Qt::Key_Home);
    EXPECT_EQ(stored().keepAliveInterval, 10);
    QTest::keyClick(&slider(), Qt::Key_End);
    EXPECT_EQ(stored().keepAliveInterval, 300);
}

TEST_F(AdvancedTab, WhereverThePointerStopsAWholeStepIsStored) {
    slider().setValue(123);
    EXPECT_EQ(stored().keepAliveInterval, 120);
    EXPECT_EQ(slider().value(), 120);
    slider().setValue(125);
    EXPECT_EQ(stored().keepAliveInterval, 130);
}

struct StoredSeconds {
    const char* name;
    std::int64_t stored;
    int shown;
};

class OddKeepAlive : public AdvancedTab, public testing::WithParamInterface<StoredSeconds> {};

TEST_P(OddKeepAlive, IsShownNearbyAndKeptUntilTheSliderIsMoved) {
    const auto [name, seconds, shown] = GetParam();
    edit([&](Tunnel& changed) { changed.keepAliveInterval = seconds; });
    EXPECT_EQ(slider().value(), shown);
    EXPECT_EQ(label("keepAliveText"), QStringLiteral("%1s").arg(seconds));
    turnTo("configurationTabButton");
    turnTo("advancedTabButton");
    EXPECT_EQ(stored().keepAliveInterval, seconds);
    QTest::keyClick(&slider(), shown == 300 ? Qt::Key_Left : Qt::Key_Right);
    EXPECT_EQ(stored().keepAliveInterval, shown == 300 ? 290 : shown + 10);
}

INSTANTIATE_TEST_SUITE_P(Seconds, OddKeepAlive,
                         testing::Values(StoredSeconds{"zero", 0, 10}, StoredSeconds{"negative", -5, 10},
                                         StoredSeconds{"offTheStep", 44, 40}, StoredSeconds{"halfway", 45, 50},
                                         StoredSeconds{"beyond", 3600, 300},
                                         StoredSeconds{"largest", INT64_MAX, 300},
                                         StoredSeconds{"smallest", INT64_MIN, 10}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(AdvancedTab, SwitchesWriteThrough) {
    EXPECT_TRUE(reconnect().isChecked());
    EXPECT_FALSE(compression().isChecked());
    EXPECT_EQ(reconnect().accessibleName(), QStringLiteral("Auto Reconnect"));
    EXPECT_EQ(compression().accessibleName(), QStringLiteral("Compression"));
    reconnect().click();
    EXPECT_FALSE(stored().reconnectOnFailure);
    compression().setFocus();
    QTest::keyClick(&compression(), Qt::Key_Space);
    EXPECT_TRUE(stored().compression);
}

TEST_F(AdvancedTab, SwitchesShowWhatOthersChose) {
    edit([](Tunnel& changed) {
        changed.reconnectOnFailure = false;
        changed.compression = true;
    });
    EXPECT_FALSE(reconnect().isChecked());
    EXPECT_TRUE(compression().isChecked());
    EXPECT_FALSE(stored().reconnectOnFailure);
}

TEST_F(AdvancedTab, ASocksTunnelPreviewsAsOne) {
    edit([](Tunnel& changed) {
        changed.tunnelType = TunnelType::socks5;
        changed.localPort = "1080";
        changed.user = "user";
        changed.host = "host";
    });
    EXPECT_EQ(preview(), QStringLiteral("/usr/bin/ssh -N -p 22 -D 127.0.0.1:1080 user@host"));
}

TEST_F(AdvancedTab, WithoutALocalPortNoTypeForwards) {
    for (const auto type : {TunnelType::localForward, TunnelType::remoteForward, TunnelType::socks5,
                            TunnelType::dynamicForward}) {
        edit([&](Tunnel& changed) {
            changed.tunnelType = type;
            changed.localPort = "";
            changed.remotePort = "80";
        });
        EXPECT_EQ(preview(), QStringLiteral("/usr/bin/ssh -N -p 22 ubuntu@example.com"));
    }
}

TEST_F(AdvancedTab, AnEmptyRemoteHostIsLocalhostInThePreviewAndHostInTheDiagram) {
    edit([](Tunnel& changed) {
        changed.remoteHost = "";
        changed.remotePort = "80";
    });
    EXPECT_TRUE(preview().contains(QStringLiteral("-L 127.0.0.1:8080:localhost:80")))
        << preview().toStdString();
    turnTo("configurationTabButton");
    EXPECT_EQ(label("diagramRemote"), QStringLiteral("host:80"));
}

TEST_F(AdvancedTab, CopyPutsTheWholeCommandOnThePasteboard) {
    edit([](Tunnel& changed) { changed.host = std::string(20000, 'h') + "\n\tx"; });
    copyButton().click();
    ASSERT_EQ(bench.pasteboard.texts.size(), 1U);
    EXPECT_EQ(bench.pasteboard.texts.front(), "/usr/bin/ssh -N -p 22 " +
                                                  std::string("-L 127.0.0.1:8080:localhost: ubuntu@") +
                                                  std::string(20000, 'h') + "\n\tx");
    EXPECT_LT(preview().size(), 10000);
}

TEST_F(AdvancedTab, CopiedIsSaidForTwoSeconds) {
    EXPECT_EQ(copyButton().accessibleName(), QStringLiteral("Copy"));
    EXPECT_TRUE(copyButtonShows(Icon::document, &Palette::secondary));
    copyButton().click();
    EXPECT_TRUE(copied());
    EXPECT_TRUE(copyButtonShows(Icon::check, &Palette::green));
    bench.dispatch.advance(1999ms);
    EXPECT_TRUE(copied());
    bench.dispatch.advance(1ms);
    EXPECT_FALSE(copied());
    EXPECT_TRUE(copyButtonShows(Icon::document, &Palette::secondary));
}

TEST_F(AdvancedTab, CopiedMayOutliveTheWindow) {
    copyButton().click();
    bench.window.reset();
    bench.dispatch.advance(3s);
    EXPECT_EQ(bench.dispatch.pendingDelayed(), 0U);
}

TEST_F(AdvancedTab, ThePreviewCanBeSelectedAndNotChanged) {
    auto& text = bench.find<QTextEdit>("sshCommandText");
    EXPECT_TRUE(text.isReadOnly());
    text.setFocus();
    text.selectAll();
    EXPECT_EQ(text.textCursor().selectedText(), preview());
    const QString before = preview();
    QTest::keyClicks(&text, QStringLiteral("x"));
    EXPECT_EQ(preview(), before);
}

TEST_F(AdvancedTab, ThePreviewIsAsHighAsItsLines) {
    auto& text = bench.find<QTextEdit>("sshCommandText");
    const int before = text.height();
    edit([](Tunnel& changed) { changed.host = std::string(300, 'h'); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return text.height() > before; }));
    edit([](Tunnel& changed) { changed.host = "h"; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return text.height() == before; }));
}

} // namespace
} // namespace fernwick::tests
