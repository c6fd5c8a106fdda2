#include "screens/theme/DisplayText.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace fernwick {

namespace {

bool turnsDirection(QChar character) {
    const char16_t code = character.unicode();
    return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

bool breaksLine(QChar character) {
    const auto category = character.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line ||
           category == QChar::Separator_Paragraph;
}

// What a document of the toolkit takes for its own marks, or cannot draw; no text means anything by it.
bool isNoCharacter(QChar character) {
    const char16_t code = character.unicode();
    return (code >= 0xFDD0 && code <= 0xFDEF) || code >= 0xFFFE;
}

// A character of a text of several lines, as it is shown.
QChar shownCharacter(QChar character) {
    switch (character.unicode()) {
    case u'\n':
    case u'\t':
        return character;
    case u'\r':
    case u'\v':
    case u'\f':
    case QChar::LineSeparator:
    case QChar::ParagraphSeparator:
    case 0x0085: // the next line, of terminals
        return u'\n';
    default:
        return breaksLine(character) || isNoCharacter(character) ? QChar(u' ') : character;
    }
}

} // namespace

QString displayLine(std::string_view utf8, qsizetype limit) {
    // A character has at most four bytes, so what lies beyond them need not even be decoded.
    const auto enough = static_cast<std::size_t>(4 * (limit + 1));
    const bool cutBytes = utf8.size() > enough;
    utf8 = utf8.substr(0, enough);
    QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    text.removeIf(turnsDirection);
    std::ranges::replace_if(text, breaksLine, QChar(u' '));
    if (cutBytes || text.size() > limit) {
        text.truncate(limit);
        if (!text.isEmpty() && text.back().isHighSurrogate()) {
            text.chop(1);
        }
        text.append(QChar(u'\u2026'));
    }
    return text;
}

QString displayText(std::string_view utf8) {
    QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.removeIf(turnsDirection);
    std::ranges::transform(text, text.begin(), shownCharacter);
    return text;
}

int drawLine(QPainter& painter, const QRect& area, const QString& text, Qt::LayoutDirection direction,
             Qt::TextElideMode elide) {
    const QFontMetrics metrics = painter.fontMetrics();
    const QString shown = metrics.elidedText(text, elide, area.width());
    const auto before = painter.layoutDirection();
    if (direction == Qt::LayoutDirectionAuto) {
        direction = text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    }
    painter.setLayoutDirection(direction);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignAbsolute | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    painter.setLayoutDirection(before);
    return std::min(metrics.horizontalAdvance(shown), area.width());
}

} // namespace fernwick
