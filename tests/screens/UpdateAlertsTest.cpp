// What the updater shows: alerts, the question, the sheet of the download, and texts that a server wrote.
#include "UpdateBench.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QProgressBar>
#include <QScrollBar>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

class UpdateAlertsTest : public testing::Test {
protected:
    static std::string text(const char* in, const char* name) {
        return find<QLabel>(in, name).text().toStdString();
    }
    template <class Widget>
    static Widget& find(const char* in, const char* name) {
        return UpdateBench::find<Widget>(in, name);
    }

    UpdateBench bench;
};

TEST_F(UpdateAlertsTest, AnErrorIsAnAlertOfTheWholeApplication) {
    const auto window = bench.openWindow();
    bench.alerts.showError("Update Error", "Network error: Connection refused");
    bench.settle();
    auto& alert = bench.dialog("updateAlert");
    EXPECT_EQ(alert.windowModality(), Qt::ApplicationModal);
    EXPECT_EQ(alert.windowTitle(), QStringLiteral("Update Error"));
    EXPECT_EQ(text("updateAlert", "updateAlertTitle"), "Update Error");
    EXPECT_EQ(text("updateAlert", "updateAlertText"), "Network error: Connection refused");
    EXPECT_EQ(alert.accessibleDescription(), QStringLiteral("Network error: Connection refused"));
    EXPECT_FALSE(alert.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    bench.find<QPushButton>("updateAlert", "updateAlertButton").click();
    bench.settle();
    EXPECT_EQ(bench.look("updateAlert"), nullptr);
}

TEST_F(UpdateAlertsTest, NewsCanBeDismissedByReturnAndByEscape) {
    for (const auto key : {Qt::Key_Return, Qt::Key_Escape}) {
        bench.alerts.showInfo("Application Update", "You are using the latest version (3.1.0).");
        bench.settle();
        EXPECT_EQ(text("updateAlert", "updateAlertText"), "You are using the latest version (3.1.0).");
        QTest::keyClick(&bench.dialog("updateAlert"), key);
        bench.settle();
        EXPECT_EQ(bench.look("updateAlert"), nullptr);
    }
}

TEST_F(UpdateAlertsTest, TheQuestionFloatsAboveAllOtherWindows) {
    bench.ask();
    auto& prompt = bench.dialog("updatePrompt");
    EXPECT_TRUE(prompt.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_EQ(prompt.windowModality(), Qt::ApplicationModal);
    EXPECT_EQ(text("updatePrompt", "updatePromptTitle"), "Application Update");
    EXPECT_EQ(text("updatePrompt", "updatePromptText"), UpdateBench::prompt().informativeText);
    EXPECT_EQ(bench.find<QLabel>("updatePrompt", "updatePromptText").textFormat(), Qt::PlainText);
    EXPECT_EQ(bench.find<QPushButton>("updatePrompt", "updateAcceptButton").text(),
              QStringLiteral("Update Now"));
    EXPECT_EQ(bench.find<QPushButton>("updatePrompt", "updateLaterButton").text(), QStringLiteral("Later"));
    EXPECT_TRUE(bench.answers.empty());
}

TEST_F(UpdateAlertsTest, EachWayOutOfTheQuestionAnswersOnce) {
    const std::vector<std::pair<std::function<void(QDialog&)>, bool>> ways{
        {[](QDialog& dialog) { dialog.findChild<QPushButton*>(QStringLiteral("updateAcceptButton"))->click(); },
         true},
        {[](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); }, true},
        {[](QDialog& dialog) { dialog.findChild<QPushButton*>(QStringLiteral("updateLaterButton"))->click(); },
         false},
        {[](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }, false},
        {[](QDialog& dialog) { dialog.close(); }, false}};
    for (const auto& [way, accepted] : ways) {
        bench.answers.clear();
        bench.ask();
        way(bench.dialog("updatePrompt"));
        bench.settle();
        EXPECT_EQ(bench.answers, std::vector<bool>{accepted});
        EXPECT_EQ(bench.look("updatePrompt"), nullptr);
    }
}

TEST_F(UpdateAlertsTest, TwoQuestionsAreTwo) {
    bench.ask();
    bench.ask();
    bench.dialog("updatePrompt").reject();
    bench.settle();
    bench.dialog("updatePrompt").accept();
    bench.settle();
    EXPECT_EQ(bench.answers.size(), 2U);
}

TEST_F(UpdateAlertsTest, AnAlertThatStandsGoesWithItsOwner) {
    {
        UpdateAlerts alerts(bench.theme);
        alerts.ask(UpdateBench::prompt(), [this](bool accepted) { bench.answers.push_back(accepted); });
        bench.settle();
        EXPECT_NE(bench.look("updatePrompt"), nullptr);
    }
    bench.settle();
    EXPECT_EQ(bench.look("updatePrompt"), nullptr);
    EXPECT_TRUE(bench.answers.empty());
}

TEST_F(UpdateAlertsTest, TheDownloadIsASheetOfTheWindowThatHasTheKeyboard) {
    const auto other = bench.openWindow();
    const auto key = bench.openWindow();
    bench.showProgress();
    auto& sheet = bench.dialog("updateProgress");
    EXPECT_EQ(sheet.parentWidget(), key.get());
    EXPECT_EQ(sheet.windowModality(), Qt::WindowModal);
    EXPECT_EQ(text("updateProgress", "updateProgressTitle"), "Downloading update...");
    const auto& bar = bench.find<QProgressBar>("updateProgress", "updateProgressBar");
    EXPECT_EQ(bar.size(), QSize(280, 20));
    EXPECT_EQ(bar.minimum(), bar.maximum());
    EXPECT_EQ(bar.accessibleName(), QStringLiteral("Downloading update..."));
    const auto buttons = sheet.findChildren<QPushButton*>();
    ASSERT_EQ(buttons.size(), 1);
    EXPECT_EQ(buttons.front()->text(), QStringLiteral("Downloading..."));
    EXPECT_FALSE(buttons.front()->isEnabled());
}

TEST_F(UpdateAlertsTest, NobodyClosesTheDownloadButTheApplication) {
    const auto window = bench.openWindow();
    bench.showProgress();
    auto& sheet = bench.dialog("updateProgress");
    QTest::keyClick(&sheet, Qt::Key_Escape);
    QTest::keyClick(&sheet, Qt::Key_Return);
    sheet.close();
    bench.settle();
    EXPECT_NE(bench.look("updateProgress"), nullptr);
    bench.alerts.closeSheets();
    bench.settle();
    EXPECT_EQ(bench.look("updateProgress"), nullptr);
}

TEST_F(UpdateAlertsTest, AWindowThatWaitsForTheKeyboardHasTheSheet) {
    const auto other = bench.openWindow();
    const auto key = bench.openWindow();
    bench.ask();
    bench.dialog("updatePrompt").accept();
    QApplication::setActiveWindow(nullptr); // the question has gone, and the keyboard is with nobody yet
    bench.showProgress();
    EXPECT_EQ(bench.dialog("updateProgress").parentWidget(), key.get());
}

TEST_F(UpdateAlertsTest, WithoutAWindowTheDownloadStaysUp) {
    const auto hidden = bench.openWindow();
    hidden->hide();
    bench.settle();
    bench.showProgress();
    auto& sheet = bench.dialog("updateProgress");
    EXPECT_EQ(sheet.parentWidget(), nullptr);
    EXPECT_EQ(sheet.windowModality(), Qt::ApplicationModal);
    bench.alerts.closeSheets();
    QTest::keyClick(&sheet, Qt::Key_Escape);
    bench.settle();
    EXPECT_NE(bench.look("updateProgress"), nullptr);
}

TEST_F(UpdateAlertsTest, ASheetOverASheetBelongsToTheWindowBelow) {
    const auto window = bench.openWindow();
    AlertSheet lower(bench.theme, QStringLiteral("lower"), {Icon::warning, &Palette::red},
                     QStringLiteral("Lower"), window.get());
    lower.open();
    lower.activateWindow();
    bench.settle();
    bench.showProgress();
    EXPECT_EQ(bench.dialog("updateProgress").parentWidget(), window.get());
}

TEST_F(UpdateAlertsTest, ClosesEverySheetOfEveryWindowAndNothingElse) {
    const auto one = bench.openWindow();
    const auto two = bench.openWindow();
    AlertSheet sheet(bench.theme, QStringLiteral("sheet"), {Icon::warning, &Palette::red},
                     QStringLiteral("Sheet"), one.get());
    sheet.open();
    QFileDialog panel(two.get());
    int results = 0;
    QObject::connect(&panel, &QDialog::finished, &panel, [&](int result) {
        EXPECT_EQ(result, QDialog::Rejected);
        ++results;
    });
    panel.open();
    QDialog modeless(one.get());
    modeless.show();
    bench.alerts.showError("Update Error", "Download failed: ");
    bench.settle();
    bench.alerts.closeSheets();
    bench.settle();
    EXPECT_FALSE(sheet.isVisible());
    EXPECT_FALSE(panel.isVisible());
    EXPECT_EQ(results, 1);
    EXPECT_TRUE(modeless.isVisible());
    EXPECT_NE(bench.look("updateAlert"), nullptr);
    EXPECT_TRUE(one->isVisible() && two->isVisible());
}

TEST_F(UpdateAlertsTest, MarkupAndControlCharactersAreText) {
    using namespace std::string_literals;
    const auto notes = "<b>bold</b>&amp;<img src='http://127.0.0.1/'>\u202E\x1B[31m\0\u0007"s;
    bench.ask(UpdateBench::prompt(notes));
    const auto shown = text("updatePrompt", "updatePromptText");
    EXPECT_TRUE(shown.contains("<b>bold</b>&amp;<img src='http://127.0.0.1/'> [31m  ")) << shown;
    EXPECT_EQ(bench.dialog("updatePrompt").accessibleDescription().toStdString(), shown);
    auto* aloud = QAccessible::queryAccessibleInterface(&bench.dialog("updatePrompt"));
    EXPECT_EQ(aloud->role(), QAccessible::Dialog);
    EXPECT_EQ(aloud->text(QAccessible::Name), QStringLiteral("Application Update"));
}

// Texts that would fill many screens, each in its own way.
struct LongNotes {
    const char* name;
    std::string notes;
    std::string end; // what the last line ends in
};

class UpdateNotes : public testing::TestWithParam<LongNotes> {
protected:
    UpdateBench bench;
};

TEST_P(UpdateNotes, StayInAWindowOfTheSameSizeAndCanBeReadToTheEnd) {
    QElapsedTimer took;
    took.start();
    bench.ask(UpdateBench::prompt(GetParam().notes));
    auto& prompt = bench.dialog("updatePrompt");
    EXPECT_LT(took.elapsed(), 10'000);
    EXPECT_LE(prompt.width(), 560);
    EXPECT_LE(prompt.height(), 400);
    auto& view = bench.find<LongTextView>("updatePrompt", "updatePromptLongText");
    EXPECT_TRUE(view.isVisible());
    EXPECT_TRUE(view.toPlainText().startsWith(QStringLiteral("New version 4.0 is available.\n\n")));
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    EXPECT_LE(prompt.accessibleDescription().size(), 1000);
    const QString end = QString::fromStdString(GetParam().end) +
                        QStringLiteral("\n\nWould you like to download and install it now?");
    constexpr int kMostPages = 2000;
    for (int page = 0; page < kMostPages && !view.toPlainText().endsWith(end); ++page) {
        view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
    }
    EXPECT_TRUE(view.toPlainText().endsWith(end));
}

std::string repeated(std::string_view text, int times) {
    std::string all;
    for (int time = 0; time < times; ++time) {
        all += text;
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(
    , UpdateNotes,
    testing::Values(LongNotes{"Lines", repeated("- Fixes a fault.\n", 30'000) + "last", "last"},
                    LongNotes{"OneWord", std::string(1'000'000, 'x') + "END", "END"},
                    LongNotes{"OneParagraph", repeated("many words ", 50'000) + "last", "many words last"},
                    LongNotes{"Empty", std::string(300'000, '\n') + "last", "last"},
                    LongNotes{"Emoji", repeated("\U0001F680", 20'000), "\U0001F680"},
                    LongNotes{"Tall", repeated("line\n", 40) + "last", "last"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(UpdateAlertsTest, LongNotesAreReadWithTheKeyboard) {
    bench.ask(UpdateBench::prompt(repeated("- Fixes a fault.\n", 5000)));
    auto& view = bench.find<LongTextView>("updatePrompt", "updatePromptLongText");
    EXPECT_EQ(view.focusPolicy() & Qt::TabFocus, Qt::TabFocus);
    EXPECT_TRUE(bench.find<QPushButton>("updatePrompt", "updateAcceptButton").hasFocus());
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_PageDown);
    EXPECT_GT(view.verticalScrollBar()->value(), 0);
    QTest::keyClick(&view, Qt::Key_Tab);
    EXPECT_FALSE(view.hasFocus());
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_Escape);
    bench.settle();
    EXPECT_EQ(bench.answers, std::vector<bool>{false});
}

} // namespace
} // namespace fernwick::tests
