#include "screens/theme/LongTextView.h"

#include "screens/theme/Grid.h"

#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr int kInset = 2;          // keeps the ground's corners inside the rounded ones
constexpr qsizetype kPiece = 8192; // characters that are laid out at a time
// The time to lay out a paragraph grows with its length; a longer one is shown as several.
constexpr qsizetype kLongestParagraph = 2000;
constexpr qsizetype kLongestLabel = 600;
constexpr qsizetype kMostLabelLines = 12;
constexpr qsizetype kLongestWord = 60;

// How many characters of the text, from a place on, make the next paragraph or part of one, without its end.
qsizetype paragraphLength(QStringView rest) {
    const qsizetype end = rest.left(kLongestParagraph + 1).indexOf(QLatin1Char('\n'));
    if (end >= 0 || rest.size() <= kLongestParagraph) {
        return end >= 0 ? end : rest.size();
    }
    const qsizetype blank = rest.left(kLongestParagraph).lastIndexOf(QLatin1Char(' '));
    if (blank > kLongestParagraph / 2) {
        return blank + 1;
    }
    return rest[kLongestParagraph - 1].isHighSurrogate() ? kLongestParagraph - 1 : kLongestParagraph;
}

} // namespace

LongTextView::LongTextView(const Theme& theme, QWidget* parent) : QPlainTextEdit(parent) {
    setFont(theme.font(13));
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setViewportMargins(kInset, kInset, kInset, kInset);
    document()->setDocumentMargin(grid::kSmall - kInset);
    setBackgroundRole(QPalette::Base);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { follow(); });
}

void LongTextView::showText(const QString& text) {
    text_ = text;
    loaded_ = 0;
    clear();
    loadMore();
    moveCursor(QTextCursor::Start);
}

void LongTextView::follow() {
    const auto& bar = *verticalScrollBar();
    if (loaded_ < text_.size() && bar.value() + bar.pageStep() > bar.maximum()) {
        loadMore();
    }
}

void LongTextView::loadMore() {
    QString piece;
    const qsizetype enough = loaded_ + kPiece;
    while (loaded_ < text_.size() && loaded_ < enough) {
        const QStringView rest = QStringView(text_).sliced(loaded_);
        const qsizetype length = paragraphLength(rest);
        piece.append(rest.left(length));
        loaded_ += length;
        if (loaded_ < text_.size()) {
            piece.append(QLatin1Char('\n'));
            loaded_ += text_[loaded_] == QLatin1Char('\n') ? 1 : 0;
        }
    }
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    end.insertText(piece);
}

bool LongTextView::isNeededFor(const QString& text) {
    if (text.size() > kLongestLabel || text.count(QLatin1Char('\n')) > kMostLabelLines) {
        return true;
    }
    const auto words = QStringView(text).split(QLatin1Char(' '));
    return std::ranges::any_of(words, [](QStringView word) { return word.size() > kLongestWord; });
}

} // namespace fernwick
