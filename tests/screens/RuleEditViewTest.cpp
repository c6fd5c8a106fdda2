#include "screens/routing/RuleEditView.h"

#include "RuleEditBench.h"
#include "screens/routing/AddEntryPopover.h"
#include "screens/routing/MacTextEditor.h"
#include "screens/theme/TextField.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <gmock/gmock.h>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RuleEditViewTest : public testing::Test {
protected:
    QString label(const char* name) const { return bench.find<QLabel>(name).text(); }
    QComboBox& menu(const char* name) const { return bench.find<QComboBox>(name); }

    QStringList choices(const char* name) const {
        QStringList texts;
        for (int choice = 0; choice < menu(name).count(); ++choice) {
            texts.append(menu(name).itemText(choice));
        }
        return texts;
    }

    void choose(const char* name, int choice) {
        menu(name).setCurrentIndex(choice);
        bench.settle();
    }

    // The only rule that is stored.
    const AppRule& stored() const {
        EXPECT_EQ(bench.store.rules().size(), 1U);
        return bench.store.rules().at(0);
    }

    // Stores a rule and opens it.
    AppRule openStored(std::vector<std::string> applications) {
        const auto rule = RuleEditBench::ruleFor(std::move(applications));
        bench.store.addRule(rule);
        bench.open(rule);
        return rule;
    }

    QToolButton& removeButton(std::size_t chip) {
        return *bench.chips().at(chip)->findChild<QToolButton*>(QStringLiteral("removeEntryButton"));
    }

    RuleEditBench bench;
};

TEST_F(RuleEditViewTest, NewRuleShowsTheDefaults) {
    auto& view = bench.open();
    EXPECT_EQ(view.size(), QSize(540, 660));
    EXPECT_EQ(bench.find<TextField>("ruleNameField").text(), QStringLiteral("New Rule"));
    EXPECT_EQ(bench.find<TextField>("ruleNameField").placeholderText(), QStringLiteral("Rule name"));
    EXPECT_TRUE(bench.find<QCheckBox>("ruleEnabledSwitch").isChecked());
    EXPECT_EQ(menu("actionMenu").currentText(), QStringLiteral("Direct"));
    EXPECT_TRUE(bench.find<QLabel>("anyApplicationLabel").isVisible());
    EXPECT_EQ(label("anyApplicationLabel"), QStringLiteral("Any application / IP"));
    EXPECT_EQ(label("entryFormsHint"), QStringLiteral("App name · bundle ID (com.apple.*) · IP · range "
                                                      "(10.0.0.0-10.255.255.255) · CIDR (192.168.0.0/24)"));
}

TEST_F(RuleEditViewTest, FormSaysWhatItIsAbout) {
    auto& view = bench.open();
    QStringList titles;
    QStringList texts;
    for (const auto* text : view.findChildren<QLabel*>()) {
        (text->objectName() == QStringLiteral("sectionTitle") ? titles : texts).append(text->text());
    }
    EXPECT_EQ(titles.join(QLatin1Char('|')), QStringLiteral("Applications|Target Hosts|Target Ports|Action"));
    for (const auto* text : {"Name:", "Enabled", "Action:", "Proxy:", "Tunnel:", "Example: 80; 8000-9000; 3124",
                             "Example: 127.0.0.1; *.example.com; 192.168.1.*; 10.1.0.0-10.5.255.255"}) {
        EXPECT_TRUE(texts.contains(QString::fromUtf8(text))) << text;
    }
}

TEST_F(RuleEditViewTest, ApplicationsOpenAsChipsInTheColoursOfTheirKind) {
    bench.open(RuleEditBench::ruleFor({"192.168.0.0/24", "10.0.0.1", "10.0.0.1-10.0.0.9", "com.apple.Safari"}));
    std::vector<NamedColor> colors;
    for (const auto* chip : bench.chips()) {
        colors.push_back(EntryChip::lookOf(chip->entry().type).color);
        EXPECT_EQ(chip->accessibleName().toStdString(), chip->entry().value);
    }
    EXPECT_THAT(colors, ElementsAre(&Palette::orange, &Palette::green, &Palette::orange, &Palette::blue));
    EXPECT_FALSE(bench.find<QLabel>("anyApplicationLabel").isVisible());
}

TEST_F(RuleEditViewTest, SavingANewRuleAppendsItAndReroutesTheSystemProxyFirst) {
    bench.open();
    bench.type("ruleNameField", QStringLiteral("Office"));
    bench.click("ruleEnabledSwitch");
    bench.type("targetHostsEditor", QStringLiteral("a.example;;  b.example"));
    bench.type("targetPortsField", QStringLiteral("80, 443"));
    choose("actionMenu", 2);
    EXPECT_THAT(bench.store.rules(), IsEmpty());
    bench.click("saveRuleButton");
    EXPECT_EQ(stored().name, "Office");
    EXPECT_FALSE(stored().isEnabled);
    EXPECT_THAT(stored().targetHosts, ElementsAre("a.example", "b.example"));
    EXPECT_THAT(stored().targetPorts, ElementsAre("80, 443"));
    EXPECT_EQ(stored().action, RuleAction::block);
    EXPECT_THAT(bench.routing.calls, ElementsAre("applySystemProxy", "scheduleRebuild"));
    EXPECT_TRUE(bench.view.isNull());
}

TEST_F(RuleEditViewTest, SavedTextsOpenAgainJoined) {
    bench.open();
    bench.type("targetHostsEditor", QStringLiteral("a.example;;  b.example"));
    bench.type("targetPortsField", QStringLiteral("80;443"));
    bench.click("saveRuleButton");
    bench.open(stored());
    EXPECT_EQ(bench.find<MacTextEditor>("targetHostsEditor").text(), "a.example; b.example");
    EXPECT_EQ(bench.find<TextField>("targetPortsField").text(), QStringLiteral("80; 443"));
}

TEST_F(RuleEditViewTest, SavingAStoredRuleReplacesItById) {
    auto rule = openStored({"firefox"});
    bench.store.addRule(AppRule::create());
    bench.type("ruleNameField", QString());
    bench.click("saveRuleButton");
    rule.name = "";
    EXPECT_EQ(bench.store.rules().at(0), rule);
    EXPECT_EQ(bench.store.rules().size(), 2U);
}

TEST_F(RuleEditViewTest, RuleThatIsGoneIsNotBroughtBack) {
    const auto rule = openStored({"firefox"});
    bench.store.deleteRule(rule.id);
    bench.click("saveRuleButton");
    EXPECT_THAT(bench.store.rules(), IsEmpty());
    EXPECT_EQ(bench.routing.calls.size(), 2U);
}

TEST_F(RuleEditViewTest, EmptyRuleCanBeSaved) {
    bench.open();
    bench.type("ruleNameField", QString());
    bench.click("saveRuleButton");
    EXPECT_EQ(stored().name, "");
    EXPECT_THAT(stored().applications, IsEmpty());
}

TEST_F(RuleEditViewTest, CancelHasNoEffect) {
    const auto rule = openStored({"firefox"});
    bench.type("ruleNameField", QStringLiteral("changed"));
    removeButton(0).click();
    bench.click("cancelRuleButton");
    EXPECT_EQ(stored(), rule);
    EXPECT_THAT(bench.routing.calls, IsEmpty());
    EXPECT_TRUE(bench.view.isNull());
}

TEST_F(RuleEditViewTest, ActionSaysWhatItMeans) {
    bench.open();
    EXPECT_EQ(choices("actionMenu"), QStringLiteral("Direct|Proxy|Block|Tunnel").split(QLatin1Char('|')));
    const QStringList meanings{
        QStringLiteral("Traffic đi thẳng, không qua proxy"), QStringLiteral("Traffic đi qua proxy đã chọn"),
        QStringLiteral("Traffic bị chặn hoàn toàn"), QStringLiteral("Traffic đi qua tunnel đã chọn")};
    for (int action = 0; action < 4; ++action) {
        choose("actionMenu", action);
        EXPECT_EQ(label("actionMeaning"), meanings[action]);
        EXPECT_EQ(menu("proxyMenu").isVisible(), action == 1);
        EXPECT_EQ(menu("tunnelMenu").isVisible(), action == 3);
    }
}

TEST_F(RuleEditViewTest, ProxyIsChosenByItsEffectiveName) {
    auto named = ProxyConfig::create();
    auto nameless = ProxyConfig::create();
    named.name = "Office";
    nameless.name = "";
    nameless.address = "10.0.0.1";
    nameless.port = 8080;
    bench.store.addProxy(named);
    bench.store.addProxy(nameless);
    bench.open();
    choose("actionMenu", 1);
    EXPECT_EQ(choices("proxyMenu"), QStringLiteral("None|Office|10.0.0.1:8080").split(QLatin1Char('|')));
    EXPECT_EQ(menu("proxyMenu").currentText(), QStringLiteral("None"));
    choose("proxyMenu", 2);
    bench.click("saveRuleButton");
    EXPECT_EQ(stored().proxyID, nameless.id);
}

TEST_F(RuleEditViewTest, ProxyMenuFollowsTheStore) {
    auto proxy = ProxyConfig::create();
    bench.store.addProxy(proxy);
    bench.open();
    choose("actionMenu", 1);
    choose("proxyMenu", 1);
    bench.store.addProxy(ProxyConfig::create());
    EXPECT_EQ(menu("proxyMenu").count(), 3);
    EXPECT_EQ(menu("proxyMenu").currentIndex(), 1);
    bench.store.deleteProxy(proxy.id);
    EXPECT_EQ(menu("proxyMenu").currentIndex(), -1);
    EXPECT_EQ(menu("proxyMenu").placeholderText(), QStringLiteral("Not found"));
    EXPECT_EQ(bench.view->draft().rule.proxyID, proxy.id);
}

TEST_F(RuleEditViewTest, TunnelIsChosenFromThoseThatWereGiven) {
    bench.tunnelNames = {{support::Uuid::random(), "db"}, {support::Uuid::random(), "web"}};
    bench.open();
    choose("actionMenu", 3);
    EXPECT_EQ(choices("tunnelMenu"), QStringLiteral("None|db|web").split(QLatin1Char('|')));
    choose("tunnelMenu", 2);
    choose("tunnelMenu", 0);
    choose("tunnelMenu", 1);
    bench.click("saveRuleButton");
    EXPECT_EQ(stored().tunnelID, bench.tunnelNames[0].id);
}

TEST_F(RuleEditViewTest, ChangingTheActionKeepsStaleReferences) {
    auto rule = AppRule::create();
    rule.action = RuleAction::proxy;
    rule.proxyID = support::Uuid::random();
    rule.tunnelID = support::Uuid::random();
    bench.store.addRule(rule);
    bench.open(rule);
    for (const int action : {3, 1, 0}) {
        choose("actionMenu", action);
    }
    bench.click("saveRuleButton");
    rule.action = RuleAction::direct;
    EXPECT_EQ(stored(), rule);
}

TEST_F(RuleEditViewTest, ChipIsTakenAwayByItsButton) {
    openStored({"firefox", "10.0.0.1", "firefox"});
    removeButton(0).click();
    bench.settle();
    ASSERT_EQ(bench.chips().size(), 2U);
    bench.click("saveRuleButton");
    EXPECT_THAT(stored().applications, ElementsAre("10.0.0.1", "firefox"));
}

TEST_F(RuleEditViewTest, ChipsAreTakenAwayByKeyboard) {
    openStored({"a", "b", "c"});
    EXPECT_EQ(removeButton(1).accessibleName(), QStringLiteral("Remove b"));
    removeButton(1).setFocus(Qt::TabFocusReason);
    QTest::keyClick(&removeButton(1), Qt::Key_Delete);
    EXPECT_EQ(bench.chips().at(1)->entry().value, "c");
    EXPECT_TRUE(removeButton(1).hasFocus());
    QTest::keyClick(&removeButton(1), Qt::Key_Backspace);
    EXPECT_TRUE(removeButton(0).hasFocus());
    QTest::keyClick(&removeButton(0), Qt::Key_Return);
    bench.settle();
    EXPECT_TRUE(bench.find<QToolButton>("addEntryPlusButton").hasFocus());
    EXPECT_TRUE(bench.find<QLabel>("anyApplicationLabel").isVisible());
    EXPECT_FALSE(bench.view.isNull());
}

TEST_F(RuleEditViewTest, ChipsWrapInsideTheSheet) {
    std::vector<std::string> many(40, "com.example.application");
    many.emplace_back(5000, 'x');
    many.emplace_back("two\nlines <b>bold</b>");
    bench.open(RuleEditBench::ruleFor(many));
    int rows = 0;
    int lastTop = -1;
    for (const auto* chip : bench.chips()) {
        EXPECT_EQ(chip->size(), chip->sizeHint());
        EXPECT_LE(chip->mapTo(bench.view, QPoint(chip->width(), 0)).x(), 540 - 24);
        rows += chip->y() > lastTop ? 1 : 0;
        lastTop = chip->y();
    }
    EXPECT_GT(rows, 10);
}

TEST_F(RuleEditViewTest, FormIsAsHighAsWhatItShows) {
    bench.open(RuleEditBench::ruleFor(std::vector<std::string>(40, "com.example.application")));
    const auto height = [this] { return bench.find<QScrollArea>("ruleForm").widget()->height(); };
    const int direct = height();
    choose("actionMenu", 1);
    EXPECT_GT(height(), direct);
    choose("actionMenu", 2);
    EXPECT_EQ(height(), direct);
    for (std::size_t chip = 0; chip < 30; ++chip) {
        removeButton(0).click();
    }
    bench.settle();
    EXPECT_LT(height(), direct);
}

TEST_F(RuleEditViewTest, ReturnSavesExceptInTheHosts) {
    bench.open();
    QTest::keyClick(&bench.find<QWidget>("targetHostsEditor"), Qt::Key_Return);
    bench.settle();
    ASSERT_FALSE(bench.view.isNull());
    EXPECT_EQ(bench.find<MacTextEditor>("targetHostsEditor").text(), "\n");
    QTest::keyClick(&bench.find<QWidget>("targetPortsField"), Qt::Key_Return);
    bench.settle();
    EXPECT_TRUE(bench.view.isNull());
    EXPECT_EQ(bench.store.rules().size(), 1U);
}

TEST_F(RuleEditViewTest, ReturnOnCancelCancels) {
    bench.open();
    auto& cancel = bench.find<QPushButton>("cancelRuleButton");
    cancel.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&cancel, Qt::Key_Return);
    bench.settle();
    EXPECT_TRUE(bench.view.isNull());
    EXPECT_THAT(bench.store.rules(), IsEmpty());
}

TEST_F(RuleEditViewTest, KeyboardStartsInTheNameAndReachesEverything) {
    bench.open(RuleEditBench::ruleFor({"firefox"}));
    EXPECT_TRUE(bench.find<QWidget>("ruleNameField").hasFocus());
    QStringList reached;
    do {
        reached.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    } while (reached.size() < 20 && !bench.find<QWidget>("ruleNameField").hasFocus());
    EXPECT_EQ(reached.join(QLatin1Char(' ')).toStdString(),
              "ruleNameField ruleEnabledSwitch addEntryPlusButton removeEntryButton targetHostsEditor "
              "targetPortsField actionMenu cancelRuleButton saveRuleButton");
}

TEST_F(RuleEditViewTest, NameIsThereToBeTypedOver) {
    bench.open();
    QTest::keyClicks(&bench.find<QWidget>("ruleNameField"), QStringLiteral("VPN"));
    EXPECT_EQ(bench.view->draft().rule.name, "VPN");
}

TEST_F(RuleEditViewTest, ThousandsOfEntriesOpenAndGoSwiftly) {
    const std::vector<std::string> many(10000, "10.0.0.1");
    bench.open(RuleEditBench::ruleFor(many));
    EXPECT_EQ(bench.chips().size(), 10000U);
    removeButton(5000).click();
    bench.settle();
    EXPECT_EQ(bench.view->draft().finished().applications.size(), 9999U);
}

} // namespace
} // namespace fernwick::tests
