#include "screens/routing/AddEntryPopover.h"

#include "RuleEditBench.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <gmock/gmock.h>

namespace fernwick::tests {
namespace {

class AddEntryPopoverTest : public testing::Test {
protected:
    AddEntryPopoverTest() {
        bench.open();
        reopen();
    }

    void reopen() { bench.click("addEntryPlusButton"); }

    AddEntryPopover& popover() const { return bench.find<AddEntryPopover>("addEntryPopover"); }
    bool isOpen() const { return popover().isVisible(); }
    bool canAdd() const { return bench.find<QPushButton>("addEntryButton").isEnabled(); }
    bool isShown(const char* name) const { return bench.find<QWidget>(name).isVisible(); }
    QString error() const {
        return isShown("inputError") ? bench.find<QLabel>("inputError").text() : QString();
    }

    void turnTo(const char* segment) {
        bench.find<QRadioButton>(segment).click();
        bench.settle();
    }

    void turnToIP(const char* way) {
        turnTo("addMode:IP / Range");
        turnTo(way);
    }

    // The values of the chips.
    std::vector<std::string> values() const {
        std::vector<std::string> texts;
        for (const auto* chip : bench.chips()) {
            texts.push_back(chip->entry().value);
        }
        return texts;
    }

    RuleEditBench bench;
};

TEST_F(AddEntryPopoverTest, OpensForAnApplication) {
    EXPECT_TRUE(isOpen());
    EXPECT_TRUE(bench.find<QRadioButton>("addMode:Application").isChecked());
    auto& field = bench.find<QLineEdit>("manualAppField");
    EXPECT_EQ(field.placeholderText(), QStringLiteral("e.g. Safari or com.apple.Safari"));
    EXPECT_TRUE(field.hasFocus());
    EXPECT_EQ(bench.find<QPushButton>("chooseApplicationButton").text(), QStringLiteral("Choose Application"));
    QStringList texts;
    for (const auto* label : popover().findChildren<QLabel*>()) {
        texts.append(label->text());
    }
    EXPECT_TRUE(texts.contains(QStringLiteral("Type an app name, bundle ID, or browse:")));
    EXPECT_TRUE(texts.contains(QStringLiteral("Wildcards OK → com.google.*")));
    EXPECT_FALSE(isShown("inputError"));
    EXPECT_FALSE(canAdd());
}

TEST_F(AddEntryPopoverTest, EachModeShowsItsFields) {
    const std::vector<std::pair<const char*, const char*>> fields{{"singleIPField", "e.g. 192.168.1.1"},
                                                                  {"rangeStartField", "10.0.0.0"},
                                                                  {"rangeEndField", "10.255.255.255"},
                                                                  {"cidrField", "e.g. 192.168.0.0/24"}};
    for (const auto& [name, placeholder] : fields) {
        EXPECT_EQ(bench.find<QLineEdit>(name).placeholderText().toStdString(), placeholder);
        EXPECT_FALSE(bench.find<QLineEdit>(name).accessibleName().isEmpty());
    }
    turnTo("addMode:IP / Range");
    EXPECT_FALSE(isShown("manualAppField"));
    EXPECT_TRUE(isShown("singleIPField"));
    turnTo("ipInputMode:IP Range");
    EXPECT_TRUE(isShown("rangeStartField") && isShown("rangeEndField"));
    EXPECT_FALSE(isShown("singleIPField") || isShown("cidrField"));
    turnTo("ipInputMode:CIDR");
    EXPECT_TRUE(isShown("cidrField"));
    turnTo("addMode:Application");
    EXPECT_FALSE(isShown("cidrField"));
}

TEST_F(AddEntryPopoverTest, BubbleIsAsWideAsItShould) {
    for (const auto* segment : {"addMode:Application", "addMode:IP / Range", "ipInputMode:IP Range"}) {
        turnTo(segment);
        EXPECT_EQ(popover().width(), 340 + 2 * AddEntryPopover::kShadow) << segment;
        EXPECT_TRUE(bench.view->rect().contains(popover().geometry())) << segment;
    }
}

TEST_F(AddEntryPopoverTest, TypedApplicationIsAdded) {
    QTest::keyClicks(&bench.find<QWidget>("manualAppField"), QStringLiteral(" com.google.* "));
    EXPECT_TRUE(canAdd());
    bench.click("addEntryButton");
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(values(), testing::ElementsAre("com.google.*"));
    EXPECT_TRUE(bench.find<QToolButton>("addEntryPlusButton").hasFocus());
}

TEST_F(AddEntryPopoverTest, AddIsEnabledByTheModesOwnFields) {
    QTest::keyClicks(&bench.find<QWidget>("manualAppField"), QStringLiteral("  "));
    EXPECT_FALSE(canAdd());
    QTest::keyClicks(&bench.find<QWidget>("manualAppField"), QStringLiteral("x"));
    EXPECT_TRUE(canAdd());
    turnTo("addMode:IP / Range");
    EXPECT_FALSE(canAdd());
    QTest::keyClicks(&bench.find<QWidget>("singleIPField"), QStringLiteral(" "));
    EXPECT_TRUE(canAdd());
    turnTo("ipInputMode:IP Range");
    QTest::keyClicks(&bench.find<QWidget>("rangeStartField"), QStringLiteral("1"));
    EXPECT_FALSE(canAdd());
    QTest::keyClicks(&bench.find<QWidget>("rangeEndField"), QStringLiteral("1"));
    EXPECT_TRUE(canAdd());
    turnTo("ipInputMode:CIDR");
    EXPECT_FALSE(canAdd());
}

TEST_F(AddEntryPopoverTest, WrongAddressKeepsThePopoverOpenAndSaysWhy) {
    turnToIP("ipInputMode:Single IP");
    bench.type("singleIPField", QStringLiteral("1.2.3.4/24"));
    bench.click("addEntryButton");
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(error(), QStringLiteral("Invalid IP address"));
    turnTo("ipInputMode:CIDR");
    EXPECT_EQ(error(), QStringLiteral("Invalid IP address"));
    bench.type("cidrField", QStringLiteral("1.2.3.4/33"));
    bench.click("addEntryButton");
    EXPECT_EQ(error(), QStringLiteral("Invalid CIDR (e.g. 192.168.0.0/24)"));
    bench.type("cidrField", QStringLiteral("1.2.3.4/32"));
    bench.click("addEntryButton");
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(values(), testing::ElementsAre("1.2.3.4/32"));
}

TEST_F(AddEntryPopoverTest, RangeIsChecked) {
    turnToIP("ipInputMode:IP Range");
    const auto tryRange = [this](const char* start, const char* end) {
        bench.type("rangeStartField", QString::fromLatin1(start));
        bench.type("rangeEndField", QString::fromLatin1(end));
        bench.click("addEntryButton");
    };
    tryRange("10.0.0.9", "10.0.0.1");
    EXPECT_EQ(error(), QStringLiteral("Start must be ≤ End"));
    tryRange("abc", "10.0.0.1");
    EXPECT_EQ(error(), QStringLiteral("Invalid IP address"));
    tryRange("10.0.0.1", "10.0.0.1");
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(values(), testing::ElementsAre("10.0.0.1-10.0.0.1"));
}

TEST_F(AddEntryPopoverTest, ErrorIsAnnouncedAtEachAttempt) {
    std::vector<std::string> told;
    QWidget sheet;
    AddEntryPopover alone(
        bench.theme,
        {[](const AppEntry& /*entry*/) {}, [] {},
         [&](QWidget& line) { told.push_back(qobject_cast<QLabel*>(&line)->text().toStdString()); }},
        &sheet);
    sheet.show();
    alone.openAt(QPoint(200, 20));
    const auto press = [&](const char* name) {
        alone.findChild<QAbstractButton*>(QString::fromLatin1(name))->click();
    };
    press("addMode:IP / Range");
    alone.findChild<QLineEdit*>(QStringLiteral("singleIPField"))->setText(QStringLiteral("x"));
    press("addEntryButton");
    press("ipInputMode:CIDR");
    alone.findChild<QLineEdit*>(QStringLiteral("cidrField"))->setText(QStringLiteral("x"));
    press("addEntryButton");
    EXPECT_THAT(told, testing::ElementsAre("Invalid IP address", "Invalid CIDR (e.g. 192.168.0.0/24)"));
}

TEST_F(AddEntryPopoverTest, OpeningStartsAnew) {
    turnToIP("ipInputMode:Single IP");
    bench.type("singleIPField", QStringLiteral("x"));
    bench.click("addEntryButton");
    bench.click("cancelEntryButton");
    EXPECT_FALSE(isOpen());
    reopen();
    EXPECT_TRUE(isShown("manualAppField"));
    EXPECT_EQ(error(), QString());
    turnTo("addMode:IP / Range");
    EXPECT_TRUE(bench.find<QLineEdit>("singleIPField").text().isEmpty());
    EXPECT_TRUE(bench.find<QRadioButton>("ipInputMode:Single IP").isChecked());
    EXPECT_TRUE(values().empty());
}

TEST_F(AddEntryPopoverTest, TheSameEntryMayBeAddedTwice) {
    for (int round = 0; round < 2; ++round) {
        bench.type("manualAppField", QStringLiteral("firefox"));
        bench.click("addEntryButton");
        reopen();
    }
    EXPECT_THAT(values(), testing::ElementsAre("firefox", "firefox"));
}

TEST_F(AddEntryPopoverTest, ReturnAddsAndDoesNotSave) {
    auto& field = bench.find<QWidget>("manualAppField");
    QTest::keyClick(&field, Qt::Key_Return); // nothing to add yet
    bench.settle();
    ASSERT_FALSE(bench.view.isNull());
    EXPECT_TRUE(isOpen());
    QTest::keyClicks(&field, QStringLiteral("firefox"));
    QTest::keyClick(&field, Qt::Key_Return);
    bench.settle();
    ASSERT_FALSE(bench.view.isNull());
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(values(), testing::ElementsAre("firefox"));
    EXPECT_TRUE(bench.store.rules().empty());
}

TEST_F(AddEntryPopoverTest, ReturnAddsAfterAButtonOfTheSheetHadTheKeyboard) {
    popover().reject();
    bench.find<QWidget>("cancelRuleButton").setFocus(Qt::TabFocusReason);
    reopen();
    turnToIP("ipInputMode:Single IP");
    auto& field = bench.find<QLineEdit>("singleIPField");
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
        field.setText(QStringLiteral("10.8.0"));
        QTest::keyClick(&field, key);
        EXPECT_EQ(error(), QStringLiteral("Invalid IP address"));
    }
    field.setText(QStringLiteral("10.8.0.1"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_FALSE(isOpen());
    EXPECT_THAT(values(), testing::ElementsAre("10.8.0.1"));
    ASSERT_FALSE(bench.view.isNull());
}

TEST_F(AddEntryPopoverTest, EscapeClosesThePopoverFirst) {
    QTest::keyClick(&bench.find<QWidget>("manualAppField"), Qt::Key_Escape);
    bench.settle();
    EXPECT_FALSE(isOpen());
    ASSERT_FALSE(bench.view.isNull());
    reopen();
    QTest::keyClick(&bench.find<QWidget>("ruleNameField"), Qt::Key_Escape); // behind it
    EXPECT_FALSE(isOpen());
    QTest::keyClick(&bench.find<QWidget>("ruleNameField"), Qt::Key_Escape);
    bench.settle();
    EXPECT_TRUE(bench.view.isNull());
}

TEST_F(AddEntryPopoverTest, ClickOutsideClosesIt) {
    QTest::mouseClick(&popover(), Qt::LeftButton, Qt::NoModifier, popover().rect().center());
    EXPECT_TRUE(isOpen());
    QTest::mouseClick(bench.view->childAt(20, 640), Qt::LeftButton);
    EXPECT_FALSE(isOpen());
    EXPECT_FALSE(bench.view.isNull());
}

TEST_F(AddEntryPopoverTest, TabGoesRoundInside) {
    turnTo("addMode:IP / Range");
    bench.find<QWidget>("singleIPField").setFocus(Qt::TabFocusReason);
    bench.type("singleIPField", QStringLiteral("1.1.1.1"));
    QStringList reached;
    do {
        reached.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    } while (reached.size() < 20 && !bench.find<QWidget>("singleIPField").hasFocus());
    EXPECT_EQ(reached.join(QLatin1Char('|')).toStdString(),
              "singleIPField|cancelEntryButton|addEntryButton|addMode:IP / Range|ipInputMode:Single IP");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("ipInputMode:Single IP"));
}

TEST_F(AddEntryPopoverTest, ArrowKeysTurnToTheNextMode) {
    auto& first = bench.find<QRadioButton>("addMode:Application");
    first.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&first, Qt::Key_Right);
    EXPECT_TRUE(isShown("singleIPField"));
    EXPECT_TRUE(bench.find<QRadioButton>("addMode:IP / Range").hasFocus());
}

} // namespace
} // namespace fernwick::tests
