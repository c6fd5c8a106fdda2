#include "screens/routing/MacTextEditor.h"

#include "screens/theme/PlainText.h"

#include <QScopedValueRollback>
#include <QTextDocument>
#include <QTextOption>

namespace fernwick {

MacTextEditor::Coordinator::Coordinator(MacTextEditor& parent, std::function<void(std::string)> changed)
    : parent_(parent), changed_(std::move(changed)) {}

void MacTextEditor::Coordinator::textDidChange() {
    auto now = showing_ ? text_ : plainText(*parent_.document());
    if (now != text_) { // the toolkit also tells changes of how the text looks
        text_ = std::move(now);
        changed_(text_);
    }
}

void MacTextEditor::Coordinator::showText(const std::string& text) {
    if (text != text_) {
        const QScopedValueRollback guard(showing_, true);
        text_ = text;
        parent_.setPlainText(QString::fromStdString(text));
    }
}

MacTextEditor::MacTextEditor(const QFont& font, int minHeight, std::function<void(std::string)> changed,
                             QWidget* parent)
    : QPlainTextEdit(parent), coordinator_(*this, std::move(changed)) {
    setFont(font);
    setFrameShape(QFrame::NoFrame);
    setMinimumHeight(minHeight);
    setTabChangesFocus(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setViewportMargins(kInsetAcross, kInsetDown, kInsetAcross, kInsetDown);
    document()->setDocumentMargin(0);
    setBackgroundRole(QPalette::Base); // the inset is part of the field
    setAutoFillBackground(true);
    connect(this, &QPlainTextEdit::textChanged, this, [this] { coordinator_.textDidChange(); });
}

QSize MacTextEditor::sizeHint() const {
    return {2 * kInsetAcross + fontMetrics().averageCharWidth(), minimumHeight()};
}

} // namespace fernwick
