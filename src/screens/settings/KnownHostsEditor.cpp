#include "screens/settings/KnownHostsEditor.h"

#include "screens/settings/VerbatimText.h"

#include <QMimeData>
#include <QTextDocument>

namespace fernwick {

namespace {

constexpr double kMargin = 6.0;

} // namespace

KnownHostsEditor::KnownHostsEditor(const Theme& theme, QWidget* parent) : QPlainTextEdit(parent) {
    setFont(theme.monospaced(12));
    setFrameShape(QFrame::NoFrame);
    setLineWrapMode(QPlainTextEdit::NoWrap); // a line is an entry
    setTabChangesFocus(true);
    document()->setDocumentMargin(kMargin);
    setBackgroundRole(QPalette::Base);
}

void KnownHostsEditor::setText(std::string_view utf8) {
    const auto verbatim = VerbatimText::of(utf8);
    endsLinesInCrLf_ = verbatim.endsLinesInCrLf;
    setPlainText(verbatim.text);
}

std::string KnownHostsEditor::text() const {
    return VerbatimText::bytes(document()->toRawText(), endsLinesInCrLf_);
}

void KnownHostsEditor::insertFromMimeData(const QMimeData* source) {
    if (source->hasText()) {
        QString text = source->text();
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        insertPlainText(VerbatimText::encoded(text));
        ensureCursorVisible();
    }
}

} // namespace fernwick
