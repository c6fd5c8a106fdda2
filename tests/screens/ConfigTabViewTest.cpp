// The tab "Configuration": every field, and what is written when.
#include "DetailBench.h"
#include "screens/detail/NotesEditor.h"
#include "screens/detail/TagPicker.h"
#include "screens/theme/ChoiceMenu.h"
#include "screens/theme/TagColors.h"

#include <QAccessible>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>

namespace fernwick::tests {
namespace {

class ConfigTab : public DetailTest {
protected:
    ChoiceMenu& type() { return bench.find<ChoiceMenu>("typeMenu"); }
    NotesEditor& notes() { return bench.find<NotesEditor>("notesEditor"); }
    bool shows(const char* name) { return bench.find<QWidget>(name).isVisible(); }

    QStringList chips() {
        QStringList names;
        for (const auto* chip : bench.find<QWidget>("tagPicker").findChildren<QAbstractButton*>()) {
            names.append((chip->isChecked() ? QStringLiteral("*") : QString()) + chip->text());
        }
        return names;
    }

    TagChip& chip(const QString& name) {
        return *bench.window->findChild<TagChip*>(QStringLiteral("tagPickerChip:") + name);
    }

    // Counts how often the list was saved.
    int savesDuring(const std::function<void()>& action) {
        int saves = 0;
        const auto counting = bench.store.changed.connect([&] { ++saves; });
        action();
        return saves;
    }
};

struct TextCase {
    const char* name;
    const char* field;
    const char* label;
    const char* placeholder;
    std::string Tunnel::* text;
};

class ConfigTexts : public ConfigTab, public testing::WithParamInterface<TextCase> {};

TEST_P(ConfigTexts, EachKeyIsWrittenAtOnce) {
    auto& edited = field(GetParam().field);
    edited.clear();
    EXPECT_EQ(stored().*GetParam().text, "");
    QTest::keyClicks(&edited, QStringLiteral("a"));
    EXPECT_EQ(stored().*GetParam().text, "a");
    QTest::keyClicks(&edited, QStringLiteral(" b"));
    EXPECT_EQ(stored().*GetParam().text, "a b");
}

TEST_P(ConfigTexts, IsNamedAndHasItsPlaceholder) {
    EXPECT_EQ(field(GetParam().field).accessibleName(), QString::fromUtf8(GetParam().label));
    EXPECT_EQ(field(GetParam().field).placeholderText(), QString::fromUtf8(GetParam().placeholder));
}

TEST_P(ConfigTexts, TakesAnyTextAsItIs) {
    const std::string odd = std::string("\0nul", 4) + "\t\n \u202Eלכם 🏠 ế\x7F" + std::string(10000, 'x');
    field(GetParam().field).setText(QString::fromStdString(odd));
    EXPECT_EQ(stored().*GetParam().text, odd);
    bench.settle();
    EXPECT_EQ(field(GetParam().field).text().toStdString(), odd);
    EXPECT_FALSE(bench.window->grab().isNull());
}

TEST_P(ConfigTexts, ShowsWhatOthersWrote) {
    edit([](Tunnel& changed) { changed.*GetParam().text = "from elsewhere"; });
    EXPECT_EQ(field(GetParam().field).text(), QStringLiteral("from elsewhere"));
}

INSTANTIATE_TEST_SUITE_P(
    Fields, ConfigTexts,
    testing::Values(
        TextCase{"name", "configNameField", "Tunnel Name", "e.g. Production DB", &Tunnel::name},
        TextCase{"host", "configHostField", "Host / IP", "192.168.1.1 or example.com", &Tunnel::host},
        TextCase{"sshPort", "configSSHPortField", "SSH Port", "22", &Tunnel::sshPort},
        TextCase{"user", "configUserField", "Username", "ubuntu", &Tunnel::user},
        TextCase{"jumpHost", "configJumpHostField", "Jump Host", "user@jumphost.com (optional)",
                 &Tunnel::jumpHost},
        TextCase{"localPort", "configLocalPortField", "Local Port", "8080", &Tunnel::localPort},
        TextCase{"remoteHost", "configRemoteHostField", "Remote Host", "localhost", &Tunnel::remoteHost},
        TextCase{"remotePort", "configRemotePortField", "Remote Port", "80", &Tunnel::remotePort}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(ConfigTab, HasItsFourSections) {
    QStringList titles;
    for (const auto* title :
         bench.find<QWidget>("configTab").findChildren<QLabel*>(QStringLiteral("sectionTitle"))) {
        titles.append(title->text());
    }
    EXPECT_EQ(titles, QStringList({QStringLiteral("General"), QStringLiteral("SSH Server"),
                                   QStringLiteral("Port Forwarding"), QStringLiteral("Notes")}));
}

TEST_F(ConfigTab, FieldsForPortsAreAsWideAsPorts) {
    EXPECT_EQ(field("configSSHPortField").width(), 80);
    EXPECT_EQ(field("configLocalPortField").width(), 100);
    EXPECT_EQ(field("configRemotePortField").width(), 100);
    EXPECT_GT(field("configHostField").width(), 200);
}

TEST_F(ConfigTab, TheLastSectionEndsAboveTheEdgeForEveryType) {
    bench.window->resize(900, 600);
    auto& page = bench.find<QScrollArea>("configTab");
    const auto underTheNotes = [&] {
        page.verticalScrollBar()->setValue(page.verticalScrollBar()->maximum());
        const QWidget& section = *notes().parentWidget()->parentWidget();
        return page.viewport()->height() - section.mapTo(page.viewport(), QPoint(0, section.height())).y();
    };
    for (const int type : {0, 2, 1, 3}) {
        this->type().setCurrentIndex(type);
        bench.settle();
        EXPECT_TRUE(QTest::qWaitFor([&] { return underTheNotes() == 30; })) << type << ": " << underTheNotes();
    }
}

TEST_F(ConfigTab, AKeyIsOneSave) {
    auto& name = field("configNameField");
    EXPECT_EQ(savesDuring([&] {
                  QTest::keyClicks(&name, QStringLiteral("x"));
                  bench.settle();
              }),
              1);
}

TEST_F(ConfigTab, CursorAndSelectionSurviveTheirOwnChange) {
    auto& name = field("configNameField");
    name.setFocus();
    name.setCursorPosition(1);
    QTest::keyClicks(&name, QStringLiteral("x"));
    bench.settle();
    EXPECT_EQ(name.text(), QStringLiteral("wxeb"));
    EXPECT_EQ(name.cursorPosition(), 2);
    name.setSelection(1, 2);
    edit([](Tunnel& changed) { changed.lastConnectedAt = support::Date{5.0}; });
    EXPECT_EQ(name.selectedText(), QStringLiteral("xe"));
    EXPECT_TRUE(name.isUndoAvailable());
}

TEST_F(ConfigTab, AKeyKeepsWhatOthersChangedBeforeTheWindowHeardOfIt) {
    Tunnel edited = stored();
    edited.lastConnectedAt = support::Date{5.0};
    edited.host = "elsewhere";
    bench.store.update(edited);
    field("configNameField").insert(QStringLiteral("!"));
    EXPECT_EQ(stored().lastConnectedAt, support::Date{5.0});
    EXPECT_EQ(stored().host, "elsewhere");
    EXPECT_EQ(stored().name, "!web");
}

TEST_F(ConfigTab, TypingIntoATunnelThatIsGoneHarmsNobody) {
    bench.store.remove(tunnel.id);
    EXPECT_EQ(savesDuring([&] { QTest::keyClicks(&field("configNameField"), QStringLiteral("x")); }), 0);
    EXPECT_TRUE(bench.store.tunnels().empty());
}

TEST_F(ConfigTab, AnotherTunnelComesWithoutTheFirstOnesUndo) {
    bench.add(tunnelNamed("web")); // of the same name
    auto& name = field("configNameField");
    QTest::keyClicks(&name, QStringLiteral("x"));
    name.backspace();
    EXPECT_TRUE(name.isUndoAvailable());
    QTest::keyClicks(&notes(), QStringLiteral("first's"));
    choose(1);
    EXPECT_FALSE(name.isUndoAvailable());
    EXPECT_EQ(notes().toPlainText(), QString());
    EXPECT_FALSE(notes().document()->isUndoAvailable());
    EXPECT_EQ(bench.store.tunnels()[1].notes, "");
}

TEST_F(ConfigTab, SubmittingAPortOfBlanksLeaves22) {
    auto& port = field("configSSHPortField");
    port.setText(QStringLiteral(" \t "));
    EXPECT_EQ(stored().sshPort, " \t ");
    QTest::keyClick(&port, Qt::Key_Return);
    EXPECT_EQ(stored().sshPort, "22");
    EXPECT_EQ(port.text(), QStringLiteral("22"));
}

TEST_F(ConfigTab, SubmittingAPortTrimsIt) {
    auto& port = field("configSSHPortField");
    port.setText(QStringLiteral("  2222 "));
    QTest::keyClick(&port, Qt::Key_Enter);
    EXPECT_EQ(stored().sshPort, "2222");
    EXPECT_EQ(port.text(), QStringLiteral("2222"));
}

TEST_F(ConfigTab, ClearingThePortWithoutSubmittingLeavesItEmpty) {
    auto& port = field("configSSHPortField");
    port.setFocus();
    port.clear();
    field("configUserField").setFocus();
    bench.settle();
    EXPECT_EQ(stored().sshPort, "");
    turnTo("advancedTabButton");
    EXPECT_FALSE(bench.find<QTextEdit>("sshCommandText").toPlainText().contains(QStringLiteral("-p")));
}

TEST_F(ConfigTab, TypesAreNamedByTheirRawTextAndHaveIcons) {
    QStringList texts;
    for (int row = 0; row < type().count(); ++row) {
        texts.append(type().itemText(row));
        EXPECT_FALSE(type().itemIcon(row).isNull());
    }
    EXPECT_EQ(texts, QStringList({QStringLiteral("Local Forward"), QStringLiteral("Remote Forward"),
                                  QStringLiteral("SOCKS5 Proxy"), QStringLiteral("Dynamic Forward")}));
    EXPECT_EQ(type().accessibleName(), QStringLiteral("Type"));
    EXPECT_EQ(type().width(), 220);
}

TEST_F(ConfigTab, TheTypeIsChosenByKeyboard) {
    type().setFocus();
    QTest::keyClick(&type(), Qt::Key_Down);
    EXPECT_EQ(stored().tunnelType, TunnelType::remoteForward);
    QTest::keyClick(&type(), Qt::Key_End);
    EXPECT_EQ(stored().tunnelType, TunnelType::dynamicForward);
}

TEST_F(ConfigTab, SocksHidesTheRemoteRowsAndKeepsTheirValues) {
    edit([](Tunnel& changed) {
        changed.remoteHost = "db.internal";
        changed.remotePort = "5432";
    });
    for (const TunnelType hides : {TunnelType::socks5, TunnelType::dynamicForward}) {
        type().setCurrentIndex(static_cast<int>(hides));
        EXPECT_FALSE(shows("configRemoteHostField"));
        EXPECT_FALSE(shows("configRemotePortField"));
        EXPECT_TRUE(shows("configLocalPortField"));
        EXPECT_TRUE(shows("portDiagram"));
        EXPECT_EQ(stored().remoteHost, "db.internal");
        EXPECT_EQ(stored().remotePort, "5432");
    }
    type().setCurrentIndex(1);
    EXPECT_EQ(stored().tunnelType, TunnelType::remoteForward);
    EXPECT_TRUE(shows("configRemoteHostField"));
    EXPECT_EQ(field("configRemotePortField").text(), QStringLiteral("5432"));
}

TEST_F(ConfigTab, AnOutsideChangeOfTheTypeIsShownAndNotWrittenBack) {
    EXPECT_EQ(savesDuring([&] { edit([](Tunnel& changed) { changed.tunnelType = TunnelType::socks5; }); }), 1);
    EXPECT_EQ(type().currentIndex(), 2);
    EXPECT_FALSE(shows("configRemoteHostField"));
}

TEST_F(ConfigTab, TheWheelPassesOverMenusAndChangesNothing) {
    const QPointF middle(20, 10);
    QWheelEvent wheel(middle, type().mapToGlobal(middle), {0, -120}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&type(), &wheel);
    EXPECT_EQ(stored().tunnelType, TunnelType::localForward);
}

TEST_F(ConfigTab, AuthMethodsStandInTheirOrder) {
    auto& menu = bench.find<ChoiceMenu>("authMethodMenu");
    ASSERT_EQ(menu.count(), 3);
    EXPECT_EQ(menu.itemText(0), QStringLiteral("Password"));
    EXPECT_EQ(menu.itemText(1), QStringLiteral("Private Key"));
    EXPECT_EQ(menu.itemText(2), QStringLiteral("SSH Agent"));
    EXPECT_EQ(menu.currentIndex(), 1);
    EXPECT_EQ(menu.accessibleName(), QStringLiteral("Auth Method"));
    EXPECT_EQ(menu.width(), 180);
}

TEST_F(ConfigTab, EachAuthMethodShowsItsOwnRow) {
    auto& menu = bench.find<ChoiceMenu>("authMethodMenu");
    EXPECT_TRUE(shows("keyPicker"));
    EXPECT_FALSE(shows("passwordField"));
    menu.setCurrentIndex(0);
    EXPECT_EQ(stored().authMethod, AuthMethod::password);
    EXPECT_FALSE(shows("keyPicker"));
    EXPECT_TRUE(shows("passwordField"));
    menu.setCurrentIndex(2);
    EXPECT_EQ(stored().authMethod, AuthMethod::agent);
    EXPECT_FALSE(shows("keyPicker"));
    EXPECT_FALSE(shows("passwordField"));
}

TEST_F(ConfigTab, TagsArePutOnAtTheEndAndTakenOff) {
    const auto gone = support::Uuid::random();
    const auto& tags = bench.tags.tags();
    edit([&](Tunnel& changed) { changed.tagIDs = {gone, tags[1].id}; });
    EXPECT_EQ(chips(), QStringList({QStringLiteral("Production"), QStringLiteral("*Staging"),
                                    QStringLiteral("Development"), QStringLiteral("Database"),
                                    QStringLiteral("Personal")}));
    chip(QStringLiteral("Production")).click();
    EXPECT_EQ(stored().tagIDs, (std::vector{gone, tags[1].id, tags[0].id}));
    EXPECT_TRUE(chip(QStringLiteral("Production")).isChecked());
    chip(QStringLiteral("Staging")).click();
    EXPECT_EQ(stored().tagIDs, (std::vector{gone, tags[0].id}));
    EXPECT_FALSE(chip(QStringLiteral("Staging")).isChecked());
}

TEST_F(ConfigTab, EachLabelStandsBesideTheMiddleOfItsControl) {
    const auto middle = [&](const QWidget& widget) {
        return widget.mapTo(&bench.find<QWidget>("configTab"), widget.rect().center()).y();
    };
    const auto middleOfLabel = [&](const QWidget& control) {
        for (const auto* name : bench.find<QWidget>("configTab").findChildren<QLabel*>()) {
            if (name->isVisible() && name->text() == control.accessibleName()) {
                return middle(*name);
            }
        }
        return -1;
    };
    for (const char* control : {"configNameField", "typeMenu", "authMethodMenu", "configLocalPortField"}) {
        EXPECT_EQ(middleOfLabel(bench.find<QWidget>(control)), middle(bench.find<QWidget>(control))) << control;
    }
    EXPECT_EQ(middleOfLabel(bench.find<QWidget>("tagPicker")), middle(chip(QStringLiteral("Production"))));
}

TEST_F(ConfigTab, AChosenChipIsFilledWithItsColourAndAnotherTintedByIt) {
    auto& first = chip(QStringLiteral("Production"));
    const auto ground = [&] { return first.grab().toImage().pixelColor(first.height() / 2, 3); };
    const QColor full = tagColor(bench.tags.tags()[0].colorHex, bench.theme.colors());
    const QColor tinted = ground();
    EXPECT_NE(tinted, full);
    EXPECT_GT(tinted.red(), tinted.blue()); // a red tag's
    first.click();
    EXPECT_EQ(ground(), full);
}

TEST_F(ConfigTab, ChipsFollowTheTagManager) {
    bench.tags.tags().front().name = "Renamed";
    bench.tags.save();
    bench.settle();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(chips().front(), QStringLiteral("Renamed"));
    EXPECT_EQ(chips().size(), 5);
}

TEST_F(ConfigTab, ChipsAreToggledByKeyboard) {
    auto& first = chip(QStringLiteral("Production"));
    first.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&first, Qt::Key_Space);
    EXPECT_EQ(stored().tagIDs, std::vector{bench.tags.tags()[0].id});
}

TEST_F(ConfigTab, TheDiagramShowsPlaceholders) {
    edit([](Tunnel& changed) {
        changed.localPort = "";
        changed.remoteHost = "";
        changed.remotePort = "";
    });
    EXPECT_EQ(label("diagramLocal"), QStringLiteral("localhost:?"));
    EXPECT_EQ(label("diagramSSH"), QStringLiteral("SSH"));
    EXPECT_EQ(label("diagramRemote"), QStringLiteral("host:?"));
}

TEST_F(ConfigTab, TheDiagramFollowsEachKeyForEveryType) {
    for (int type = 0; type < 4; ++type) {
        this->type().setCurrentIndex(type);
        field("configLocalPortField").setText(QString::number(1000 + type));
        field("configRemotePortField").setText(QString::number(type));
        EXPECT_EQ(label("diagramLocal"), QStringLiteral("localhost:%1").arg(1000 + type));
        EXPECT_EQ(label("diagramRemote"), QStringLiteral("localhost:%1").arg(type));
    }
}

TEST_F(ConfigTab, NotesKeepLinesAndBlanksThatMustNotBreak) {
    auto& editor = notes();
    EXPECT_EQ(editor.height(), 70);
    EXPECT_EQ(editor.accessibleName(), QStringLiteral("Notes"));
    editor.setPlainText(QStringLiteral("one\ntwo\u00A0three 🏠"));
    EXPECT_EQ(stored().notes, "one\ntwo\u00A0three 🏠");
    QTest::keyClick(&editor, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(stored().notes, "\none\ntwo\u00A0three 🏠");
}

TEST_F(ConfigTab, NotesShowOutsideChangesAndKeepTheCursorOtherwise) {
    edit([](Tunnel& changed) { changed.notes = "line\r\nwith return"; });
    EXPECT_EQ(stored().notes, "line\r\nwith return"); // looking at it does not change it
    auto& editor = notes();
    editor.setFocus();
    editor.moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor, QStringLiteral("!"));
    bench.settle();
    EXPECT_EQ(stored().notes, "line\nwith return!");
    EXPECT_TRUE(editor.textCursor().atEnd());
    edit([](Tunnel& changed) { changed.notes = "short"; });
    EXPECT_EQ(editor.toPlainText(), QStringLiteral("short"));
}

TEST_F(ConfigTab, TabLeavesTheNotes) {
    notes().setFocus();
    QTest::keyClick(&notes(), Qt::Key_Tab);
    EXPECT_EQ(stored().notes, "");
    EXPECT_FALSE(notes().hasFocus());
}

TEST_F(ConfigTab, EveryControlHasANameAloud) {
    for (auto* control : bench.find<QWidget>("configTab").findChildren<QWidget*>()) {
        // the list inside a menu is the toolkit's
        const bool ours =
            (control->focusPolicy() & Qt::TabFocus) != 0 && !control->inherits("QComboBoxListView");
        if (!ours || control->focusProxy() != nullptr) {
            continue;
        }
        const auto* button = qobject_cast<QAbstractButton*>(control);
        EXPECT_FALSE(control->accessibleName().isEmpty() && (button == nullptr || button->text().isEmpty()))
            << control->metaObject()->className() << control->objectName().toStdString();
        EXPECT_FALSE(control->objectName().isEmpty()) << control->accessibleName().toStdString();
    }
}

TEST_F(ConfigTab, AssistiveTechnologyMayAskForAChildThatIsGone) {
    auto* access = QAccessible::queryAccessibleInterface(&bench.find<QWidget>("configTab"));
    ASSERT_NE(access, nullptr);
    EXPECT_EQ(access->role(), QAccessible::Pane);
    const int counted = access->childCount();
    EXPECT_NE(access->child(0), nullptr);
    turnTo("advancedTabButton");
    EXPECT_EQ(access->child(counted), nullptr);
    EXPECT_EQ(access->child(1000), nullptr);
}

} // namespace
} // namespace fernwick::tests
