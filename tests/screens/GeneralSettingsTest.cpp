// The tab "General": five preferences under their own names, the login, the search for a newer version.
#include "SettingsBench.h"
#include "catalogue/TunnelStore.h"
#include "screens/main/AddTunnelSheet.h"
#include "screens/routing/RadioRow.h"
#include "screens/settings/GeneralPreferences.h"
#include "screens/theme/LongTextView.h"
#include "screens/theme/Switch.h"
#include "screens/theme/TextField.h"

#include <QPushButton>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

using platform::PropertyValue;

class General : public testing::Test {
protected:
    bool isOn(const char* name) { return bench.find<Switch>(name).isChecked(); }
    RadioRow& option(const char* name) { return bench.find<RadioRow>(name); }
    TextField& port() { return bench.find<TextField>("defaultSSHPortField"); }

    // What stands under a key.
    template <class T>
    std::optional<T> stored(const char* key) {
        const auto found = bench.defaults.value(key);
        const auto* value = found ? found->as<T>() : nullptr;
        return value != nullptr ? std::optional(*value) : std::nullopt;
    }

    SettingsBench bench;
};

TEST_F(General, ShowsTheDefaultsAndStoresNothingByItself) {
    bench.open();
    EXPECT_TRUE(option("showAs:Menu bar icon").isChecked());
    EXPECT_TRUE(isOn("showStatusSwitch"));
    EXPECT_FALSE(isOn("launchAtLoginSwitch"));
    EXPECT_FALSE(isOn("connectOnLaunchSwitch"));
    EXPECT_EQ(port().text(), QStringLiteral("22"));
    for (const char* key :
         {"showAsOption", "launchAtLogin", "showStatusInMenuBar", "defaultSSHPort", "connectOnLaunch"}) {
        EXPECT_FALSE(bench.defaults.value(key)) << key;
    }
    EXPECT_TRUE(bench.loginItem.calls.empty());
}

TEST_F(General, ShowsWhatIsStored) {
    bench.defaults.set("showAsOption", {std::string("Both")});
    bench.defaults.set("launchAtLogin", {true});
    bench.defaults.set("showStatusInMenuBar", {false});
    bench.defaults.set("defaultSSHPort", {std::string("2200")});
    bench.defaults.set("connectOnLaunch", {std::int64_t{1}}); // as an older preference file has it
    bench.open();
    EXPECT_TRUE(option("showAs:Both").isChecked());
    EXPECT_TRUE(isOn("launchAtLoginSwitch"));
    EXPECT_FALSE(isOn("showStatusSwitch"));
    EXPECT_EQ(port().text(), QStringLiteral("2200"));
    EXPECT_TRUE(isOn("connectOnLaunchSwitch"));
    EXPECT_TRUE(bench.loginItem.calls.empty()); // showing is no change
}

TEST_F(General, ValuesOfAnotherTypeAreNone) {
    bench.defaults.set("showAsOption", {true});
    bench.defaults.set("showStatusInMenuBar", {std::string("no")});
    bench.defaults.set("defaultSSHPort", {std::int64_t{2222}});
    bench.open();
    EXPECT_TRUE(option("showAs:Menu bar icon").isChecked());
    EXPECT_TRUE(isOn("showStatusSwitch"));
    EXPECT_EQ(port().text(), QStringLiteral("22"));
}

TEST_F(General, AnUnknownDisplayOptionIsNoneOfThem) {
    bench.defaults.set("showAsOption", {std::string("Nowhere")});
    bench.open();
    for (const char* name : {"showAs:Dock icon", "showAs:Menu bar icon", "showAs:Both"}) {
        EXPECT_FALSE(option(name).isChecked()) << name;
    }
    EXPECT_EQ(stored<std::string>("showAsOption"), "Nowhere");
}

TEST_F(General, ChangesAreStoredUnderTheirNames) {
    bench.open();
    option("showAs:Dock icon").click();
    EXPECT_EQ(stored<std::string>("showAsOption"), "Dock icon");
    option("showAs:Dock icon").setFocus();
    QTest::keyClick(&option("showAs:Dock icon"), Qt::Key_Right);
    EXPECT_EQ(stored<std::string>("showAsOption"), "Menu bar icon");
    bench.click("showStatusSwitch");
    EXPECT_EQ(stored<bool>("showStatusInMenuBar"), false);
    bench.click("connectOnLaunchSwitch");
    EXPECT_EQ(stored<bool>("connectOnLaunch"), true);
    bench.type("defaultSSHPortField", QStringLiteral(" 2222x"));
    EXPECT_EQ(stored<std::string>("defaultSSHPort"), " 2222x"); // as typed
}

TEST_F(General, LaunchAtLoginAsksTheSystem) {
    bench.open();
    bench.click("launchAtLoginSwitch");
    EXPECT_EQ(stored<bool>("launchAtLogin"), true);
    EXPECT_TRUE(bench.loginItem.enabled);
    bench.click("launchAtLoginSwitch");
    EXPECT_EQ(stored<bool>("launchAtLogin"), false);
    EXPECT_EQ(bench.loginItem.calls, (std::vector<std::string>{"enable", "disable"}));
    EXPECT_FALSE(isOn("launchAtLoginSwitch"));
}

TEST_F(General, ARefusedLoginItemTurnsTheSwitchOffWithoutAWord) {
    bench.loginItem.failure = "no permission";
    bench.open();
    bench.find<Switch>("launchAtLoginSwitch").click();
    EXPECT_TRUE(isOn("launchAtLoginSwitch")); // it goes back on the main queue, and not in place
    bench.settle();
    EXPECT_FALSE(isOn("launchAtLoginSwitch"));
    EXPECT_EQ(stored<bool>("launchAtLogin"), false);
    EXPECT_EQ(bench.loginItem.calls.size(), 1U);
    EXPECT_EQ(bench.window().findChild<QDialog*>(), nullptr);
    for (const auto* label : bench.window().findChildren<QLabel*>()) {
        EXPECT_FALSE(label->text().contains(QStringLiteral("permission")));
    }
}

TEST_F(General, ALoginItemThatCannotBeTakenAwayTurnsTheSwitchOnAgain) {
    bench.defaults.set("launchAtLogin", {true});
    bench.loginItem.failure = "read-only";
    bench.open();
    bench.click("launchAtLoginSwitch");
    EXPECT_TRUE(isOn("launchAtLoginSwitch"));
    EXPECT_EQ(stored<bool>("launchAtLogin"), true);
    EXPECT_EQ(bench.loginItem.calls, std::vector<std::string>{"disable"});
}

TEST_F(General, ARefusalIsKeptThoughTheWindowHasGone) {
    bench.loginItem.failure = "no permission";
    bench.open();
    bench.find<Switch>("launchAtLoginSwitch").click();
    bench.window().close();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    bench.settle();
    EXPECT_EQ(stored<bool>("launchAtLogin"), false);
}

TEST_F(General, TheDefaultPortDoesNotReachANewTunnel) {
    bench.open();
    bench.type("defaultSSHPortField", QStringLiteral("2222"));
    TunnelStore store(bench.defaults, bench.clock);
    AddTunnelSheet sheet(bench.theme, store, bench.clock, [](const Tunnel&) {}, nullptr);
    sheet.findChild<QLineEdit*>(QStringLiteral("hostField"))->setText(QStringLiteral("example.com"));
    sheet.findChild<QLineEdit*>(QStringLiteral("usernameField"))->setText(QStringLiteral("anna"));
    sheet.findChild<QPushButton*>(QStringLiteral("createTunnelButton"))->click();
    EXPECT_EQ(store.tunnels().back().host, "example.com");
    EXPECT_EQ(store.tunnels().back().sshPort, "22");
}

TEST_F(General, ThePortFieldHasItsSizeAndPlaceholder) {
    bench.open();
    EXPECT_EQ(port().width(), 70);
    EXPECT_EQ(port().placeholderText(), QStringLiteral("22"));
    port().clear();
    EXPECT_EQ(stored<std::string>("defaultSSHPort"), "");
}

TEST_F(General, CheckUpdateAsksAndShowsWhatComesBack) {
    bench.open();
    EXPECT_FALSE(bench.find<QLabel>("updateOutcome").isVisible());
    bench.click("checkUpdateButton");
    EXPECT_EQ(bench.updateChecks, 1);
    const QString outcome =
        QStringLiteral("New <b>version</b> 4\n\nnotes\n\nWould you like to download and install it now?");
    bench.controller.showUpdateOutcome(outcome.toStdString());
    bench.settle();
    auto& label = bench.find<QLabel>("updateOutcome");
    EXPECT_TRUE(label.isVisible());
    EXPECT_EQ(label.text(), outcome);
    EXPECT_EQ(label.textFormat(), Qt::PlainText);
    bench.controller.showUpdateOutcome("");
    EXPECT_FALSE(label.isVisible());
}

TEST_F(General, AnOutcomeOfAnyLengthScrollsInItsPlace) {
    bench.open();
    const auto size = bench.window().size();
    const std::string text = "New version 4 is available.\n\n" + std::string(3'000'000, 'x') + "\u0001<b>\r\n";
    bench.controller.showUpdateOutcome(text);
    bench.settle();
    auto& view = bench.find<LongTextView>("longUpdateOutcome");
    EXPECT_TRUE(view.isVisible());
    EXPECT_EQ(view.height(), 160);
    EXPECT_LE(view.width(), size.width());
    EXPECT_FALSE(bench.find<QLabel>("updateOutcome").isVisible());
    EXPECT_EQ(bench.window().size(), size);
    EXPECT_EQ(bench.aloud("longUpdateOutcome"), "Application Update");
    bench.controller.showUpdateOutcome("short");
    EXPECT_FALSE(view.isVisible());
    EXPECT_TRUE(bench.find<QLabel>("updateOutcome").isVisible());
}

TEST_F(General, CheckUpdateDoesNothingWhereNobodyChecks) {
    auto context = bench.context();
    context.checkForUpdates = nullptr;
    SettingsWindow window(context);
    window.findChild<QPushButton*>(QStringLiteral("checkUpdateButton"))->click();
    EXPECT_EQ(bench.updateChecks, 0);
}

TEST_F(General, TellsTheVersion) {
    bench.version = std::nullopt;
    bench.open();
    EXPECT_EQ(bench.text("versionText"), "Version Unknown");
    bench.window().close();
    bench.version = "3.1.0";
    bench.open();
    EXPECT_EQ(bench.text("versionText"), "Version 3.1.0");
}

TEST_F(General, HasItsTextsInOrder) {
    bench.open();
    QStringList texts;
    for (const auto* label : bench.find<QWidget>("generalTab").findChildren<QLabel*>()) {
        texts.append(label->text());
    }
    for (const char* text : {"Appearance", "Show as:", "Show status counts in menu bar", "Startup",
                             "Launch at login", "Reconnect tunnels on launch", "Defaults", "Default SSH Port",
                             "Update", "Application Update", "About", "Fernwick"}) {
        EXPECT_EQ(texts.count(QString::fromLatin1(text)), 1) << text;
    }
    QStringList titles;
    for (const auto* title : bench.window().findChildren<QLabel*>(QStringLiteral("sectionTitle"))) {
        titles.append(title->text());
    }
    EXPECT_EQ(titles.join(QLatin1Char(' ')), QStringLiteral("Appearance Startup Defaults Update About"));
}

TEST_F(General, EveryControlHasAName) {
    bench.open();
    EXPECT_EQ(bench.aloud("showAs:Dock icon"), "Dock icon");
    EXPECT_EQ(bench.aloud("showStatusSwitch"), "Show status counts in menu bar");
    EXPECT_EQ(bench.aloud("launchAtLoginSwitch"), "Launch at login");
    EXPECT_EQ(bench.aloud("connectOnLaunchSwitch"), "Reconnect tunnels on launch");
    EXPECT_EQ(bench.aloud("defaultSSHPortField"), "Default SSH Port");
    EXPECT_EQ(bench.aloud("checkUpdateButton"), "Check Update");
}

} // namespace
} // namespace fernwick::tests
