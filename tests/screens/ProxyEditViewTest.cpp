// The sheet for one proxy: fields, the port's filter, what saving makes of them, and what cancelling leaves
// alone.
#include "screens/routing/ProxyEditView.h"

#include "RoutingBench.h"
#include "screens/routing/RadioRow.h"
#include "screens/theme/ChoiceMenu.h"
#include "screens/theme/Switch.h"
#include "screens/theme/TextField.h"

#include <QAccessible>
#include <QPushButton>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class ProxyEdit : public testing::Test {
protected:
    ~ProxyEdit() override {
        delete sheet;
        bench.settle();
    }

    void open(std::optional<ProxyConfig> proxy = std::nullopt, TunnelNames tunnels = {}) {
        sheet = new ProxyEditView(bench.theme, bench.store, std::move(tunnels), std::move(proxy), nullptr);
        sheet->open();
        bench.settle();
    }

    // Opens the sheet on a proxy that the store has.
    void openStored(const ProxyConfig& proxy, TunnelNames tunnels = {}) {
        bench.store.addProxy(proxy);
        open(proxy, std::move(tunnels));
    }

    template <class Widget>
    Widget& find(const char* name) {
        auto* found = sheet->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) {
            qFatal("no widget named %s", name);
        }
        return *found;
    }

    TextField& field(const char* name) { return find<TextField>(name); }

    void type(const char* name, const char* text) {
        field(name).selectAll();
        QTest::keyClick(&field(name), Qt::Key_Delete);
        QTest::keyClicks(&field(name), QString::fromUtf8(text));
    }

    void click(const char* button) {
        find<QPushButton>(button).click();
        bench.settle();
    }

    std::string label(const char* name) { return find<QLabel>(name).text().toStdString(); }

    [[nodiscard]] const ProxyConfig& last() const { return bench.store.proxies().back(); }

    RoutingBench bench;
    QPointer<ProxyEditView> sheet;
};

TEST_F(ProxyEdit, ANewProxyHasTheDefaults) {
    open();
    EXPECT_EQ(sheet->size(), QSize(480, 580));
    EXPECT_EQ(label("proxyEditHeading"), "Proxy – 127.0.0.1");
    EXPECT_EQ(field("proxyNameField").text(), QStringLiteral("New Proxy"));
    EXPECT_EQ(field("proxyAddressField").text(), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(field("proxyPortField").text(), QStringLiteral("1080"));
    EXPECT_TRUE(find<RadioRow>("protocol:SOCKS5").isChecked());
    EXPECT_EQ(field("proxyNameField").placeholderText(), QStringLiteral("e.g. My Proxy"));
    EXPECT_EQ(field("proxyAddressField").width(), 180);
    EXPECT_EQ(field("proxyPortField").width(), 80);
}

TEST_F(ProxyEdit, TheHeadingFollowsTheAddress) {
    open();
    type("proxyAddressField", "10.0.0.9");
    EXPECT_EQ(label("proxyEditHeading"), "Proxy – 10.0.0.9");
}

TEST_F(ProxyEdit, LettersDropOutOfThePort) {
    open();
    type("proxyPortField", "80a80");
    EXPECT_EQ(field("proxyPortField").text(), QStringLiteral("8080"));
    EXPECT_EQ(sheet->proxy().port, 8080);
}

TEST_F(ProxyEdit, TheCursorStaysWhereALetterDroppedOut) {
    open();
    field("proxyPortField").setCursorPosition(2);
    QTest::keyClicks(&field("proxyPortField"), QStringLiteral("x5"));
    EXPECT_EQ(field("proxyPortField").text(), QStringLiteral("10580"));
    EXPECT_EQ(field("proxyPortField").cursorPosition(), 3);
}

TEST_F(ProxyEdit, APortBeyondTheRangeIsStoredOnlyBySaving) {
    open();
    type("proxyPortField", "70000");
    EXPECT_EQ(field("proxyPortField").text(), QStringLiteral("70000"));
    EXPECT_EQ(sheet->proxy().port, 7000); // the last value in the range, on the way
    click("proxySaveButton");
    EXPECT_EQ(last().port, 70000);
}

TEST_F(ProxyEdit, PortZeroIsStoredOnlyBySaving) {
    openStored(proxyNamed("web", "10.0.0.1", 3128));
    type("proxyPortField", "0");
    EXPECT_EQ(sheet->proxy().port, 3128);
    click("proxySaveButton");
    EXPECT_EQ(last().port, 0);
}

TEST_F(ProxyEdit, APortThatCannotBeReadKeepsTheLastOne) {
    for (const char* text : {"", "٨٠", "99999999999999999999"}) {
        openStored(proxyNamed("web", "10.0.0.1", 3128));
        field("proxyPortField").setText(QString::fromUtf8(text));
        click("proxySaveButton");
        EXPECT_EQ(last().port, 3128) << text;
    }
}

TEST_F(ProxyEdit, AnEmptyNameBecomesTheAddress) {
    open();
    type("proxyNameField", "");
    type("proxyAddressField", "10.0.0.1");
    click("proxySaveButton");
    EXPECT_EQ(last().name, "10.0.0.1");
}

TEST_F(ProxyEdit, AnEmptyNameAndAddressAreAccepted) {
    open();
    type("proxyNameField", "");
    type("proxyAddressField", "");
    click("proxySaveButton");
    ASSERT_EQ(bench.store.proxies().size(), 1U);
    EXPECT_EQ(last().name, "");
    EXPECT_EQ(last().address, "");
}

TEST_F(ProxyEdit, OnlySocks5SaysThatThereAreNoOptions) {
    ProxyConfig proxy = proxyNamed("web");
    proxy.useTargetHostname = true;
    openStored(proxy);
    EXPECT_EQ(label("proxyOptionsText"), "No options available for SOCKS5 proxy.");
    find<RadioRow>("protocol:HTTPS").click();
    EXPECT_EQ(label("proxyOptionsText"), "");
    EXPECT_TRUE(find<QLabel>("proxyOptionsText").isVisible());
    find<RadioRow>("protocol:SOCKS4").click();
    EXPECT_EQ(label("proxyOptionsText"), "");
    find<RadioRow>("protocol:SOCKS5").click();
    EXPECT_EQ(label("proxyOptionsText"), "No options available for SOCKS5 proxy.");
    EXPECT_TRUE(find<Switch>("proxyHostnameSwitch").isChecked());
}

TEST_F(ProxyEdit, AClickAnywhereOnARowChoosesTheProtocol) {
    open();
    auto& row = find<RadioRow>("protocol:SOCKS4");
    QTest::mouseClick(&row, Qt::LeftButton, {}, QPoint(row.width() - 3, row.height() / 2));
    click("proxySaveButton");
    EXPECT_EQ(last().proto, ProxyProtocol::socks4);
}

TEST_F(ProxyEdit, TurningTheLoginOffKeepsIt) {
    ProxyConfig proxy = proxyNamed("web");
    proxy.authentication = {true, "anna", "secret"};
    openStored(proxy);
    EXPECT_EQ(field("proxyPasswordField").echoMode(), QLineEdit::Password);
    find<Switch>("proxyLoginSwitch").click();
    EXPECT_FALSE(field("proxyUsernameField").isVisible());
    EXPECT_FALSE(field("proxyPasswordField").isVisible());
    click("proxySaveButton");
    EXPECT_EQ(last().authentication, (ProxyAuthentication{false, "anna", "secret"}));
    open(last());
    find<Switch>("proxyLoginSwitch").click();
    EXPECT_TRUE(field("proxyUsernameField").isVisible());
    EXPECT_EQ(field("proxyUsernameField").text(), QStringLiteral("anna"));
    EXPECT_EQ(field("proxyPasswordField").text(), QStringLiteral("secret"));
}

TEST_F(ProxyEdit, WithoutTunnelsTheBoundOneStaysStored) {
    ProxyConfig proxy = proxyNamed("web");
    proxy.tunnelID = support::Uuid::random();
    openStored(proxy);
    EXPECT_EQ(sheet->findChild<ChoiceMenu*>(), nullptr);
    click("proxySaveButton");
    EXPECT_EQ(last().tunnelID, proxy.tunnelID);
}

TEST_F(ProxyEdit, ATunnelIsBoundAndTakenAwayAgain) {
    const TunnelNames tunnels{{support::Uuid::random(), "web"}, {support::Uuid::random(), "db"}};
    openStored(proxyNamed("proxy", "10.0.0.1", 3128), tunnels);
    auto& menu = find<ChoiceMenu>("proxyTunnelMenu");
    EXPECT_EQ(menu.currentText(), QStringLiteral("None"));
    menu.setCurrentIndex(2);
    EXPECT_EQ(sheet->proxy().tunnelID, tunnels[1].id);
    EXPECT_EQ(sheet->proxy().address, "10.0.0.1");
    EXPECT_EQ(sheet->proxy().port, 3128);
    menu.setCurrentIndex(0);
    EXPECT_EQ(sheet->proxy().tunnelID, std::nullopt);
}

TEST_F(ProxyEdit, ABoundTunnelThatIsGoneIsKeptUntilAnotherIsChosen) {
    ProxyConfig proxy = proxyNamed("web");
    proxy.tunnelID = support::Uuid::random();
    openStored(proxy, {{support::Uuid::random(), "db"}});
    EXPECT_EQ(find<ChoiceMenu>("proxyTunnelMenu").currentIndex(), -1);
    click("proxySaveButton");
    EXPECT_EQ(last().tunnelID, proxy.tunnelID);
}

TEST_F(ProxyEdit, SavingAChangeKeepsTheIdAndThePlace) {
    const ProxyConfig first = proxyNamed("first");
    bench.store.addProxy(first);
    bench.store.addProxy(proxyNamed("second"));
    open(first);
    type("proxyNameField", "renamed");
    click("proxySaveButton");
    ASSERT_EQ(bench.store.proxies().size(), 2U);
    EXPECT_EQ(bench.store.proxies()[0].id, first.id);
    EXPECT_EQ(bench.store.proxies()[0].name, "renamed");
    EXPECT_TRUE(sheet.isNull());
}

TEST_F(ProxyEdit, CancelAndEscapeLeaveTheStoreAlone) {
    const ProxyConfig stored = proxyNamed("web");
    bench.store.addProxy(stored);
    open(stored);
    type("proxyNameField", "renamed");
    click("proxyCancelButton");
    EXPECT_TRUE(sheet.isNull());
    open();
    QTest::keyClick(sheet.data(), Qt::Key_Escape);
    bench.settle();
    EXPECT_TRUE(sheet.isNull());
    EXPECT_EQ(bench.store.proxies(), std::vector{stored});
}

TEST_F(ProxyEdit, ReturnInAFieldSaves) {
    open();
    QTest::keyClick(&field("proxyNameField"), Qt::Key_Return);
    bench.settle();
    EXPECT_EQ(bench.store.proxies().size(), 1U);
}

TEST_F(ProxyEdit, AProxyThatWasDeletedMeanwhileStaysDeleted) {
    openStored(proxyNamed("web"));
    bench.store.deleteProxy(last().id);
    click("proxySaveButton");
    EXPECT_TRUE(bench.store.proxies().empty());
}

TEST_F(ProxyEdit, EveryControlHasAName) {
    ProxyConfig proxy = proxyNamed("web");
    proxy.authentication.enabled = true;
    open(proxy, {{support::Uuid::random(), "db"}});
    const auto name = [&](const char* widget) {
        return QAccessible::queryAccessibleInterface(&find<QWidget>(widget))->text(QAccessible::Name);
    };
    EXPECT_EQ(name("proxyNameField"), QStringLiteral("Name"));
    EXPECT_EQ(name("proxyPortField"), QStringLiteral("Port"));
    EXPECT_EQ(name("proxyLoginSwitch"), QStringLiteral("Enable"));
    EXPECT_EQ(name("proxyPasswordField"), QStringLiteral("Password"));
    EXPECT_EQ(find<ChoiceMenu>("proxyTunnelMenu").accessibleName(), QStringLiteral("Tunnel"));
    EXPECT_EQ(name("protocol:SOCKS4"), QStringLiteral("SOCKS4"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&find<QWidget>("protocol:HTTPS"))->role(),
              QAccessible::RadioButton);
    EXPECT_EQ(name("proxyHostnameSwitch"), QStringLiteral("Use target hostname in proxy request if available"));
}

} // namespace
} // namespace fernwick::tests
