// Pictures of every state of the rule editor, for eyes: they lie in the build folder, under pictures/. The test
// itself only says that each could be drawn and is not of one colour. ctest runs it a second time on a screen
// of twice the density.
#include "RuleEditBench.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QScrollArea>
#include <QScrollBar>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

struct Shot {
    Appearance appearance;
    const char* name;
};

class RuleEditPictures : public testing::TestWithParam<Shot> {
protected:
    RuleEditPictures() : bench(GetParam().appearance) {}

    void save(QWidget& widget, const char* name) {
        bench.settle();
        const QImage picture = widget.grab().toImage();
        bool varied = false;
        for (int y = 0; y < picture.height() && !varied; ++y) {
            varied = picture.pixel(picture.width() / 3, y) != picture.pixel(0, 0);
        }
        EXPECT_TRUE(varied) << name;
        const QString folder = QStringLiteral(FERNWICK_PICTURES);
        QDir().mkpath(folder);
        EXPECT_TRUE(
            picture.save(QStringLiteral("%1/rule-%2-%3-%4x.png")
                             .arg(folder, QString::fromLatin1(name), QString::fromLatin1(GetParam().name))
                             .arg(picture.devicePixelRatio())));
    }

    void saveSheet(const char* name) { save(*bench.view, name); }

    void turnTo(const char* segment) { bench.click(segment); }

    void tryToAdd(const char* name) {
        bench.click("addEntryButton");
        saveSheet(name);
    }

    void addTargets() {
        auto proxy = ProxyConfig::create();
        proxy.name = "Office gateway";
        bench.store.addProxy(proxy);
        bench.tunnelNames = {{support::Uuid::random(), "Production DB"}};
        rule.name = "Browsers to the office";
        rule.targetHosts = {"*.example.com", "192.168.1.*", "10.1.0.0-10.5.255.255"};
        rule.targetPorts = {"80", "443", "8000-9000"};
        rule.action = RuleAction::proxy;
        rule.proxyID = proxy.id;
    }

    RuleEditBench bench;
    AppRule rule = AppRule::create();
};

TEST_P(RuleEditPictures, NewRule) {
    bench.open();
    saveSheet("new");
    bench.find<QWidget>("targetHostsEditor").setFocus(Qt::TabFocusReason);
    bench.type("targetHostsEditor",
               QStringLiteral("one.example.com; two.example.com; 10.0.0.0-10.255.255.255"));
    saveSheet("new-hosts");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    saveSheet("new-focus");
}

TEST_P(RuleEditPictures, FullRule) {
    addTargets();
    rule.applications = {"firefox",        "com.apple.Safari", "chrome",       "10.0.0.1-10.0.0.9",
                         "192.168.0.0/16", "10.20.30.40",      "com.google.*", "steam"};
    bench.open(rule);
    saveSheet("full");
    QTest::keyClick(&bench.find<QWidget>("addEntryPlusButton"), Qt::Key_Tab);
    bench.chips().at(1)->focusButton();
    bench.find<QComboBox>("actionMenu").setCurrentIndex(2);
    saveSheet("full-block");
    bench.find<QComboBox>("actionMenu").setCurrentIndex(3);
    bench.find<QScrollArea>("ruleForm").verticalScrollBar()->setValue(1000);
    saveSheet("full-tunnel");
    bench.find<QComboBox>("actionMenu").showPopup();
    save(*QApplication::activePopupWidget(), "menu-actions");
}

TEST_P(RuleEditPictures, ManyChips) {
    addTargets();
    for (int number = 0; number < 60; ++number) {
        rule.applications.push_back(number % 3 == 0 ? "10.0." + std::to_string(number) + ".0/24"
                                                    : "application-" + std::to_string(number));
    }
    rule.isEnabled = false;
    bench.open(rule);
    saveSheet("many");
}

TEST_P(RuleEditPictures, LongAndForeignNames) {
    addTargets();
    rule.name = "A very long name for a rule that does not fit into its field whatever one does about it";
    rule.applications = {std::string(300, 'x'), "متصفح الإنترنت",     "דפדפן",
                         "浏览器 🚀",           "line one\nline two", "<b>not bold</b>"};
    rule.targetHosts = {std::string(200, 'h') + ".example.com", "пример.рф"};
    bench.open(rule);
    saveSheet("names");
}

TEST_P(RuleEditPictures, RightToLeft) {
    QApplication::setLayoutDirection(Qt::RightToLeft);
    addTargets();
    rule.applications = {"firefox",      "متصفح الإنترنت", "10.0.0.1",   "192.168.0.0/16",
                         "com.google.*", "steam",          "thunderbird"};
    bench.open(rule);
    saveSheet("mirrored");
    bench.click("addEntryPlusButton");
    turnTo("addMode:IP / Range");
    turnTo("ipInputMode:IP Range");
    saveSheet("mirrored-popover");
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_P(RuleEditPictures, Popover) {
    addTargets();
    rule.applications = {"firefox", "10.20.30.40"};
    bench.open(rule);
    bench.click("addEntryPlusButton");
    saveSheet("popover");
    turnTo("addMode:IP / Range");
    bench.type("singleIPField", QStringLiteral("1.2.3.4/24"));
    tryToAdd("popover-single");
    turnTo("ipInputMode:IP Range");
    bench.type("rangeStartField", QStringLiteral("10.0.0.9"));
    bench.type("rangeEndField", QStringLiteral("10.0.0.1"));
    tryToAdd("popover-range");
    turnTo("ipInputMode:CIDR");
    bench.type("cidrField", QStringLiteral("1.2.3.4/33"));
    tryToAdd("popover-cidr");
    QTest::keyClick(&bench.find<QWidget>("addMode:IP / Range"), Qt::Key_Left);
    bench.type("manualAppField", QStringLiteral("com.google.*"));
    saveSheet("popover-error");
}

TEST_P(RuleEditPictures, Picker) {
    bench.applications.applications = {
        {"Calculator", "gnome-calculator", ""},
        {"Firefox Web Browser", "firefox", ""},
        {"Một ứng dụng có tên thật là dài để xem nó bị cắt ở đâu", "long-name", ""},
        {"Terminal", "kgx", ""},
        {"Visual Studio Code", "code", ""},
        {"متصفح الإنترنت", "browser", ""}};
    bench.open();
    bench.click("addEntryPlusButton");
    bench.find<QAbstractButton>("chooseApplicationButton").click();
    auto& picker = bench.find<ApplicationPicker>("applicationPicker");
    picker.show();
    QApplication::setActiveWindow(&picker);
    bench.dispatch.holdGlobal(true);
    save(picker, "picker-loading");
    bench.dispatch.holdGlobal(false);
    save(picker, "picker");
    QTest::keyClick(&bench.find<QWidget>("applicationSearchField"), Qt::Key_Down);
    QTest::keyClick(&bench.find<QWidget>("applicationList"), Qt::Key_Down, Qt::ShiftModifier);
    save(picker, "picker-chosen");
    QTest::keyClicks(&bench.find<QWidget>("applicationSearchField"), QStringLiteral("nothing like it"));
    save(picker, "picker-noresults");
}

INSTANTIATE_TEST_SUITE_P(Both, RuleEditPictures,
                         testing::Values(Shot{Appearance::light, "light"}, Shot{Appearance::dark, "dark"}),
                         [](const auto& info) { return std::string(info.param.name); });

} // namespace
} // namespace fernwick::tests
