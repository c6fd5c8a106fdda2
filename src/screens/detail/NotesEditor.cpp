#include "screens/detail/NotesEditor.h"

#include "screens/theme/PlainText.h"

#include <QScopedValueRollback>
#include <QTextDocument>

#include <algorithm>

namespace fernwick {

namespace {

constexpr double kMargin = 5.0;

} // namespace

NotesEditor::NotesEditor(const Theme& theme, std::function<void(std::string)> edited, QWidget* parent)
    : QPlainTextEdit(parent), edited_(std::move(edited)) {
    setFont(theme.font(13));
    setFixedHeight(kHeight);
    setTabChangesFocus(true);
    document()->setDocumentMargin(kMargin);
    viewport()->setAutoFillBackground(false);
    connect(this, &QPlainTextEdit::textChanged, this, [this] {
        std::string now = showing_ ? std::string() : plainText(*document());
        if (!showing_ && now != last_) { // it also tells changes of how the text looks
            last_ = std::move(now);
            edited_(last_);
        }
    });
}

void NotesEditor::showStored(const std::string& stored, bool anew) {
    if (stored == last_ && !anew) {
        return;
    }
    const QScopedValueRollback guard(showing_, true);
    const int cursor = hasFocus() && !anew ? textCursor().position() : 0;
    last_ = stored;
    setPlainText(QString::fromStdString(stored));
    QTextCursor there = textCursor();
    there.setPosition(std::min(cursor, document()->characterCount() - 1));
    setTextCursor(there);
}

void NotesEditor::focusInEvent(QFocusEvent* event) {
    QPlainTextEdit::focusInEvent(event);
    update(); // the ring around it
}

void NotesEditor::focusOutEvent(QFocusEvent* event) {
    QPlainTextEdit::focusOutEvent(event);
    update();
}

} // namespace fernwick
