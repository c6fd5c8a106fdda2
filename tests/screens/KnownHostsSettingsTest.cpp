// The tab "Known Hosts": what is read, what is written, byte for byte, and what is said about it.
#include "SettingsBench.h"
#include "platform/posix/PosixFileSystem.h"
#include "screens/settings/KnownHostsEditor.h"
#include "support/TemporaryFolder.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fernwick::tests {
namespace {

namespace fs = std::filesystem;

using namespace std::chrono_literals;

constexpr const char* kFile = SettingsBench::kKnownHosts;

class KnownHosts : public testing::Test {
protected:
    void open(const std::string& content) {
        bench.files.files[kFile] = {content, 0644};
        bench.open(SettingsTab::knownHosts);
    }

    KnownHostsSettingsView& tab() { return bench.find<KnownHostsSettingsView>("knownHostsTab"); }
    KnownHostsEditor& editor() { return bench.find<KnownHostsEditor>("knownHostsEditor"); }
    void reload() { bench.click("reloadKnownHostsButton"); }
    void save() { bench.click("saveKnownHostsButton"); }
    std::string stored() { return bench.files.files.at(kFile).bytes; }

    SettingsBench bench;
};

TEST_F(KnownHosts, HasItsTexts) {
    open("a\n");
    QStringList texts;
    for (const auto* label : tab().findChildren<QLabel*>()) {
        texts.append(label->text());
    }
    EXPECT_TRUE(texts.contains(QStringLiteral("Known Hosts")));
    EXPECT_TRUE(texts.contains(QStringLiteral("~/.ssh/known_hosts")));
    EXPECT_TRUE(texts.contains(
        QStringLiteral("Editing known_hosts directly. Remove an entry to reset host key verification.")));
    EXPECT_EQ(bench.find<QPushButton>("reloadKnownHostsButton").text(), QStringLiteral("Reload"));
    EXPECT_EQ(bench.find<QPushButton>("saveKnownHostsButton").text(), QStringLiteral("Save"));
    EXPECT_EQ(bench.aloud("knownHostsEditor"), "Known Hosts");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&editor())->role(), QAccessible::EditableText);
}

TEST_F(KnownHosts, ReadsTheFileWheneverItAppears) {
    open("first\n");
    EXPECT_EQ(tab().knownHostsText(), "first\n");
    bench.files.files[kFile].bytes = "second\n";
    bench.turnTo(SettingsTab::tags);
    EXPECT_EQ(tab().knownHostsText(), "first\n");
    bench.turnTo(SettingsTab::knownHosts);
    EXPECT_EQ(tab().knownHostsText(), "second\n");
}

TEST_F(KnownHosts, ReloadDropsWhatWasTyped) {
    open("first\n");
    QTest::keyClicks(&editor(), QStringLiteral("x"));
    EXPECT_EQ(tab().knownHostsText(), "xfirst\n");
    reload();
    EXPECT_EQ(tab().knownHostsText(), "first\n");
    EXPECT_FALSE(editor().document()->isUndoAvailable());
}

TEST_F(KnownHosts, IsLoadingWhileTheFileIsRead) {
    open("");
    bool loading = false;
    bench.files.onRead = [&](const std::string& /*path*/) { loading = tab().isLoading(); };
    reload();
    EXPECT_TRUE(loading);
    EXPECT_FALSE(tab().isLoading());
}

TEST_F(KnownHosts, WithoutAFileThereIsAPlaceholderThatSavingWrites) {
    bench.open(SettingsTab::knownHosts);
    EXPECT_EQ(tab().knownHostsText(), "# File not found or empty\n");
    reload();
    EXPECT_EQ(tab().knownHostsText(), "# File not found or empty\n");
    save();
    EXPECT_EQ(stored(), "# File not found or empty\n");
    EXPECT_EQ(bench.files.files[kFile].mode, 0600U);
    EXPECT_TRUE(bench.files.folders.contains("/home/someone/.ssh"));
}

TEST_F(KnownHosts, WhatCannotBeReadShowsAsThePlaceholder) {
    open("valid\n");
    bench.files.files[kFile].bytes = "broken \xff\n";
    reload();
    EXPECT_EQ(tab().knownHostsText(), "# File not found or empty\n");
    bench.files.files[kFile].bytes = "valid\n";
    bench.files.unreadable.insert(kFile);
    reload();
    EXPECT_EQ(tab().knownHostsText(), "# File not found or empty\n");
}

TEST_F(KnownHosts, AnEmptyFileIsEmpty) {
    open("");
    EXPECT_EQ(tab().knownHostsText(), "");
    save();
    EXPECT_EQ(stored(), "");
}

TEST_F(KnownHosts, LiesInTheHomeFolder) {
    bench.host.environment["HOME"] = "/elsewhere";
    bench.files.files["/elsewhere/.ssh/known_hosts"] = {"there\n", 0600};
    open("here\n");
    EXPECT_EQ(tab().knownHostsText(), "there\n");
    bench.host.environment["HOME"] = "";
    bench.host.home = "/home/someone";
    reload();
    EXPECT_EQ(tab().knownHostsText(), "here\n");
}

TEST_F(KnownHosts, SavesWhatIsThereAndSaysSoForTwoSeconds) {
    open("one\ntwo\n");
    QTest::keyClicks(&editor(), QStringLiteral("zero "));
    save();
    EXPECT_EQ(stored(), "zero one\ntwo\n");
    EXPECT_EQ(bench.files.files[kFile].mode, 0644U); // as it was
    EXPECT_EQ(tab().saveStatus(), "Saved successfully");
    EXPECT_EQ(bench.text("saveStatus"), "Saved successfully");
    EXPECT_TRUE(bench.find<QLabel>("saveStatus").isVisible());
    bench.dispatch.advance(1999ms);
    EXPECT_EQ(tab().saveStatus(), "Saved successfully");
    bench.dispatch.advance(1ms);
    EXPECT_EQ(tab().saveStatus(), "");
    EXPECT_FALSE(bench.find<QLabel>("saveStatus").isVisible());
}

TEST_F(KnownHosts, ALaterSaveHasTwoSecondsOfItsOwn) {
    open("one\n");
    save();
    bench.dispatch.advance(1500ms);
    save();
    bench.dispatch.advance(1500ms);
    EXPECT_EQ(tab().saveStatus(), "Saved successfully");
    bench.dispatch.advance(500ms);
    EXPECT_EQ(tab().saveStatus(), "");
}

TEST_F(KnownHosts, SaysWhyItCouldNotBeSaved) {
    open("one\n");
    bench.files.writeFailure = platform::FileError{28, "No space left on device"};
    save();
    EXPECT_EQ(tab().saveStatus(), "No space left on device");
    EXPECT_EQ(bench.text("saveStatus"), "No space left on device");
    EXPECT_EQ(tab().knownHostsText(), "one\n");
    bench.dispatch.advance(2s);
    EXPECT_EQ(tab().saveStatus(), "");
}

TEST_F(KnownHosts, SaysWhyTheFolderCouldNotBeMade) {
    bench.open(SettingsTab::knownHosts);
    bench.files.folderFailure = platform::FileError{13, "Permission denied"};
    save();
    EXPECT_EQ(tab().saveStatus(), "Permission denied");
    EXPECT_FALSE(bench.files.files.contains(kFile));
}

TEST_F(KnownHosts, ALinkStaysALink) {
    open("");
    bench.files.files.clear();
    bench.files.links[kFile] = "/dotfiles/known_hosts";
    reload();
    save();
    EXPECT_FALSE(bench.files.files.contains(kFile));
    EXPECT_EQ(bench.files.files["/dotfiles/known_hosts"].bytes, "# File not found or empty\n");
}

TEST_F(KnownHosts, WorksOnRealFiles) {
    const fakes::TemporaryFolder home;
    bench.host.environment["HOME"] = home.path();
    platform::PosixFileSystem real;
    const SettingsContext context{bench.theme,    bench.keys,      bench.tags,    bench.keychain,
                                  bench.defaults, bench.loginItem, bench.desktop, bench.panels,
                                  real,           bench.dispatch,  bench.clock,   bench.host};
    KnownHostsSettingsView view(context, nullptr);
    view.show();
    const auto save = [&] { view.findChild<QPushButton*>(QStringLiteral("saveKnownHostsButton"))->click(); };
    save();
    EXPECT_EQ(view.saveStatus(), "Saved successfully");
    const fs::path folder = fs::path(home.path()) / ".ssh";
    EXPECT_EQ(fs::status(folder).permissions(), fs::perms::owner_all);
    EXPECT_EQ(fs::status(folder / "known_hosts").permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(home.read(".ssh/known_hosts"), "# File not found or empty\n");
    fs::remove_all(folder);
    std::ofstream(folder) << "in the way";
    save();
    EXPECT_EQ(view.saveStatus(), "Not a directory");
}

TEST_F(KnownHosts, TheStatusDoesNotOutliveTheWindow) {
    open("one\n");
    save();
    bench.window().close();
    bench.settle();
    EXPECT_EQ(bench.dispatch.pendingTimers(), 0U);
}

TEST_F(KnownHosts, EveryTextSurvivesBeingSaved) {
    const std::vector<std::pair<const char*, std::string>> texts{
        {"no line end", "one"},
        {"CR LF", "one\r\ntwo\r\n"},
        {"mixed line ends", "one\r\ntwo\nthree\rfour\n\n\n"},
        {"a NUL", std::string("a\0b\n", 4)},
        {"a NUL at the end", std::string("a\n\0", 3)},
        {"separators", "a\u2028b\u2029c\n"},
        {"blanks that must not break", "a\u00A0b\u202Fc\t d \n"},
        {"a byte order mark", "\xEF\xBB\xBFone\n"},
        {"a byte order mark within", "one\xEF\xBB\xBFtwo\n"},
        {"marks of a frame", "\xEF\xB7\x90one\xEF\xB7\x91\n"},
        {"beyond the first plane", "\xF0\x9F\x94\x91\xF0\x90\x80\x80\n"},
        {"object and replacement", "\xEF\xBF\xBC\xEF\xBF\xBD\n"},
        {"another direction", "שלום\u202Eabc\u202C\n"},
    };
    open("");
    for (const auto& [name, text] : texts) {
        bench.files.files[kFile].bytes = text;
        reload();
        EXPECT_EQ(tab().knownHostsText(), text) << name;
        save();
        EXPECT_EQ(stored(), text) << name;
    }
}

TEST_F(KnownHosts, EveryCharacterOfTheFirstPlaneSurvives) {
    QString all;
    for (char16_t code = 1; code < 0xFFFE; ++code) {
        if (!QChar::isSurrogate(code)) {
            all.append(QChar(code));
        }
    }
    const auto text = all.toStdString();
    KnownHostsEditor unseen(bench.theme, nullptr);
    unseen.setText(text);
    EXPECT_TRUE(unseen.text() == text);
}

TEST_F(KnownHosts, LinesThatAreTypedEndAsTheFilesDo) {
    open("one\r\n");
    editor().moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor(), QStringLiteral("two"));
    QTest::keyClick(&editor(), Qt::Key_Return);
    QTest::keyClick(&editor(), Qt::Key_Return, Qt::ShiftModifier); // a line break within a paragraph
    QTest::keyClicks(&editor(), QStringLiteral("three"));
    EXPECT_EQ(tab().knownHostsText(), "one\r\ntwo\r\n\r\nthree");
}

TEST_F(KnownHosts, PastedTextIsTakenAsItStands) {
    open("");
    auto* pasted = new QMimeData; // which the clipboard takes over
    pasted->setText(QStringLiteral("a\u2028b\r\nc\u00A0d"));
    pasted->setHtml(QStringLiteral("<b>other</b>"));
    QApplication::clipboard()->setMimeData(pasted);
    editor().paste();
    EXPECT_EQ(tab().knownHostsText(), "a\u2028b\nc\u00A0d");
}

TEST_F(KnownHosts, TheTabKeyLeavesTheEditor) {
    open("one\n");
    editor().setFocus();
    QTest::keyClick(&editor(), Qt::Key_Tab);
    EXPECT_FALSE(editor().hasFocus());
    EXPECT_EQ(tab().knownHostsText(), "one\n");
}

// Generous beside the figures of script/bench, which has the limits.
TEST_F(KnownHosts, TwentyThousandLinesAreNoTrouble) {
    std::string text;
    for (int line = 0; line < 20000; ++line) {
        text += "host" + std::to_string(line) + ".example.com ssh-ed25519 " + std::string(68, 'A') + "\n";
    }
    QElapsedTimer timer;
    timer.start();
    open(text);
    bench.window().grab();
    editor().verticalScrollBar()->setValue(editor().verticalScrollBar()->maximum());
    bench.window().grab();
    save();
    EXPECT_LT(timer.elapsed(), 2000);
    EXPECT_EQ(stored(), text);
}

} // namespace
} // namespace fernwick::tests
