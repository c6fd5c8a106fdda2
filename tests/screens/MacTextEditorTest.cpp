#include "screens/routing/MacTextEditor.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <QVBoxLayout>
#include <gmock/gmock.h>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacTextEditorTest : public testing::Test {
protected:
    MacTextEditorTest() {
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&editor);
        layout->addWidget(&next);
        window.resize(300, 200);
        window.show();
        QApplication::setActiveWindow(&window);
        editor.setFocus();
    }

    QWidget window;
    std::vector<std::string> told;
    MacTextEditor editor{QFont(), 55, [this](std::string text) { told.push_back(std::move(text)); }, &window};
    QLineEdit next{&window};
};

TEST_F(MacTextEditorTest, EveryChangeTellsTheWholeText) {
    QTest::keyClicks(&editor, QStringLiteral("ab"));
    QTest::keyClick(&editor, Qt::Key_Return);
    EXPECT_THAT(told, ElementsAre("a", "ab", "ab\n"));
    EXPECT_EQ(editor.text(), "ab\n");
}

TEST_F(MacTextEditorTest, TextFromOutsideReplacesWithoutTelling) {
    editor.setText("one\ntwo");
    EXPECT_EQ(editor.toPlainText(), QStringLiteral("one\ntwo"));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(MacTextEditorTest, TheSameTextFromOutsideLeavesCursorAndUndo) {
    QTest::keyClicks(&editor, QStringLiteral("ab"));
    QTest::keyClick(&editor, Qt::Key_Left);
    editor.setText("ab");
    EXPECT_EQ(editor.textCursor().position(), 1);
    EXPECT_TRUE(editor.document()->isUndoAvailable());
}

TEST_F(MacTextEditorTest, UndoTakesTypingBack) {
    editor.setText("kept");
    editor.moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor, QStringLiteral(" typed"));
    QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor.text(), "kept");
    EXPECT_EQ(told.back(), "kept");
}

TEST_F(MacTextEditorTest, TabMovesOnInsteadOfTrappingTheKeyboard) {
    QTest::keyClick(&editor, Qt::Key_Tab);
    EXPECT_TRUE(next.hasFocus());
    QTest::keyClick(&next, Qt::Key_Backtab);
    EXPECT_TRUE(editor.hasFocus());
    EXPECT_EQ(editor.text(), "");
}

TEST_F(MacTextEditorTest, LooksAsItShould) {
    EXPECT_EQ(editor.frameWidth(), 0);
    EXPECT_EQ(editor.viewport()->geometry().topLeft(), QPoint(4, 6));
    EXPECT_EQ(editor.width() - editor.viewport()->width(), 8);
    EXPECT_EQ(editor.height() - editor.viewport()->height(), 12);
    EXPECT_EQ(editor.backgroundRole(), QPalette::Base);
    EXPECT_EQ(editor.minimumHeight(), 55);
    editor.setText(std::string(500, '\n'));
    EXPECT_FALSE(editor.verticalScrollBar()->isVisible());
    EXPECT_FALSE(editor.horizontalScrollBar()->isVisible());
}

TEST_F(MacTextEditorTest, RichTextIsPastedPlain) {
    auto* data = new QMimeData;
    data->setHtml(QStringLiteral("<b>bold</b>"));
    data->setText(QStringLiteral("bold"));
    QApplication::clipboard()->setMimeData(data);
    editor.paste();
    EXPECT_EQ(editor.text(), "bold");
}

TEST_F(MacTextEditorTest, BlanksThatMustNotBreakAndOtherScriptsStay) {
    editor.setText("a\u00A0b");
    editor.moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor, QStringLiteral("c"));
    EXPECT_EQ(editor.text(), "a\u00A0bc");
}

} // namespace
} // namespace fernwick::tests
