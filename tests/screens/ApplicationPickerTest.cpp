#include "screens/routing/ApplicationPicker.h"

#include "RuleEditBench.h"
#include "screens/routing/AddEntryPopover.h"
#include "screens/routing/ApplicationListModel.h"

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <gmock/gmock.h>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;

class ApplicationPickerTest : public testing::Test {
protected:
    ApplicationPickerTest() {
        bench.applications.applications = {{"Files", "nautilus", "org.gnome.Nautilus"},
                                           {"Safari", "com.apple.Safari", ""},
                                           {"Terminal", "kgx", "/no/such/icon.png"}};
    }

    void openPopover() {
        bench.open();
        bench.click("addEntryPlusButton");
    }

    void browse() {
        bench.find<QPushButton>("chooseApplicationButton").click();
        QApplication::setActiveWindow(picker());
    }

    void openPicker() {
        openPopover();
        browse();
        bench.settle();
    }

    ApplicationPicker* picker() const {
        return bench.view->findChild<ApplicationPicker*>(QStringLiteral("applicationPicker"));
    }
    QListView& list() const { return bench.find<QListView>("applicationList"); }
    bool canTake() const { return bench.find<QPushButton>("takeApplicationsButton").isEnabled(); }
    QString message() const {
        auto& label = bench.find<QLabel>("applicationListMessage");
        return label.isVisible() ? label.text() : QString();
    }

    void select(const std::vector<int>& rows) {
        for (const int row : rows) {
            list().selectionModel()->select(list().model()->index(row, 0), QItemSelectionModel::Select);
        }
    }

    void search(const char* text) {
        QTest::keyClicks(&bench.find<QWidget>("applicationSearchField"), QString::fromUtf8(text));
    }

    // "name=value" of the entries.
    std::vector<std::string> entries() const {
        std::vector<std::string> texts;
        for (const auto& entry : bench.view->draft().entries) {
            texts.push_back(entry.displayName + "=" + entry.value);
        }
        return texts;
    }

    RuleEditBench bench;
};

TEST_F(ApplicationPickerTest, ListIsReadInTheBackgroundAndShownWhenItComes) {
    openPopover();
    browse();
    EXPECT_EQ(picker()->windowTitle(), QStringLiteral("Choose Application"));
    EXPECT_EQ(message(), QStringLiteral("Loading..."));
    EXPECT_EQ(bench.applications.reads, 0);
    bench.dispatch.runGlobal();
    EXPECT_EQ(bench.applications.reads, 1);
    EXPECT_EQ(list().model()->rowCount(), 0);
    bench.settle();
    EXPECT_EQ(list().model()->rowCount(), 3);
    EXPECT_EQ(message(), QString());
}

TEST_F(ApplicationPickerTest, PickedApplicationBecomesAChipAndItsValueIsStored) {
    openPicker();
    select({1});
    bench.click("takeApplicationsButton");
    EXPECT_EQ(picker(), nullptr);
    EXPECT_EQ(bench.chips().at(0)->accessibleName(), QStringLiteral("Safari"));
    EXPECT_THAT(entries(), ElementsAre("Safari=com.apple.Safari"));
    bench.find<QPushButton>("saveRuleButton").click();
    bench.settle();
    bench.open(bench.store.rules().at(0));
    EXPECT_EQ(bench.chips().at(0)->accessibleName(), QStringLiteral("com.apple.Safari"));
}

TEST_F(ApplicationPickerTest, PopoverStaysOpenWithTheLastValue) {
    openPicker();
    select({2, 0});
    bench.click("takeApplicationsButton");
    EXPECT_THAT(entries(), ElementsAre("Files=nautilus", "Terminal=kgx"));
    EXPECT_TRUE(bench.find<AddEntryPopover>("addEntryPopover").isVisible());
    EXPECT_EQ(bench.find<QLineEdit>("manualAppField").text(), QStringLiteral("kgx"));
    bench.click("addEntryButton");
    EXPECT_THAT(entries(), ElementsAre("Files=nautilus", "Terminal=kgx", "kgx=kgx"));
}

TEST_F(ApplicationPickerTest, TheSameApplicationMayBePickedTwice) {
    openPicker();
    for (int round = 0; round < 2; ++round) {
        select({0});
        bench.click("takeApplicationsButton");
        browse();
        bench.settle();
    }
    EXPECT_THAT(entries(), ElementsAre("Files=nautilus", "Files=nautilus"));
}

TEST_F(ApplicationPickerTest, CancelTakesNothing) {
    openPicker();
    select({0});
    bench.click("cancelApplicationsButton");
    EXPECT_EQ(picker(), nullptr);
    EXPECT_TRUE(entries().empty());
    EXPECT_TRUE(bench.find<AddEntryPopover>("addEntryPopover").isVisible());
}

TEST_F(ApplicationPickerTest, SearchLooksAtNamesAndValues) {
    openPicker();
    search("NAUT");
    EXPECT_EQ(list().model()->rowCount(), 1);
    EXPECT_EQ(list().model()->index(0, 0).data().toString(), QStringLiteral("Files"));
    search("xyz");
    EXPECT_EQ(message(), QStringLiteral("No results"));
    EXPECT_FALSE(canTake());
}

TEST_F(ApplicationPickerTest, SearchAndReturnTakeTheBestMatch) {
    openPicker();
    EXPECT_TRUE(bench.find<QWidget>("applicationSearchField").hasFocus());
    search("ter");
    QTest::keyClick(&bench.find<QWidget>("applicationSearchField"), Qt::Key_Return);
    bench.settle();
    EXPECT_EQ(picker(), nullptr);
    EXPECT_THAT(entries(), ElementsAre("Terminal=kgx"));
}

TEST_F(ApplicationPickerTest, SeveralAreTakenByKeyboard) {
    openPicker();
    EXPECT_FALSE(canTake());
    QTest::keyClick(&bench.find<QWidget>("applicationSearchField"), Qt::Key_Down);
    EXPECT_TRUE(list().hasFocus());
    QTest::keyClick(&list(), Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&list(), Qt::Key_Return);
    bench.settle();
    EXPECT_THAT(entries(), ElementsAre("Files=nautilus", "Safari=com.apple.Safari"));
}

TEST_F(ApplicationPickerTest, DoubleClickTakes) {
    openPicker();
    const auto where = list().visualRect(list().model()->index(1, 0)).center();
    QTest::mouseClick(list().viewport(), Qt::LeftButton, Qt::NoModifier, where);
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, Qt::NoModifier, where);
    bench.settle();
    EXPECT_THAT(entries(), ElementsAre("Safari=com.apple.Safari"));
}

TEST_F(ApplicationPickerTest, NothingInstalledIsSaid) {
    bench.applications.applications.clear();
    openPicker();
    EXPECT_EQ(message(), QStringLiteral("No applications found"));
    EXPECT_FALSE(canTake());
    search("x");
    EXPECT_EQ(message(), QStringLiteral("No applications found"));
}

TEST_F(ApplicationPickerTest, ListThatComesTooLateIsDropped) {
    openPopover();
    browse();
    bench.dispatch.runGlobal();
    picker()->close();
    bench.view->close();
    bench.settle();
    EXPECT_TRUE(bench.view.isNull());
}

TEST_F(ApplicationPickerTest, RowsSayNameAndValueAloudAndAlwaysHaveAnIcon) {
    openPicker();
    const auto index = list().model()->index(0, 0);
    EXPECT_EQ(index.data(Qt::AccessibleTextRole).toString(), QStringLiteral("Files, nautilus"));
    EXPECT_EQ(index.data(ApplicationListModel::kValueRole).toString(), QStringLiteral("nautilus"));
    for (int row = 0; row < 3; ++row) {
        EXPECT_FALSE(list().model()->index(row, 0).data(Qt::DecorationRole).value<QIcon>().isNull()) << row;
    }
}

TEST_F(ApplicationPickerTest, TenThousandApplicationsAreSearchedAsTheyAreTyped) {
    for (int number = 0; number < 10000; ++number) {
        bench.applications.applications.push_back({"Tool " + std::to_string(number), "tool", "tool"});
    }
    openPicker();
    search("9999");
    EXPECT_EQ(list().model()->rowCount(), 1);
}

} // namespace
} // namespace fernwick::tests
