// Text that others wrote, made fit to be drawn on one line. What is stored is never changed by it.
// Threads: any.
#pragma once

#include <QRect>
#include <QString>

#include <string_view>

class QPainter;

namespace fernwick {

// The most characters of a name that are ever laid out; no screen has room for more.
inline constexpr qsizetype kLongestLine = 256;

// The text as one line: line ends, tabs and other control characters become blanks, marks that would turn the
// direction of what follows are left out, and text beyond `limit` characters is cut and ends in an ellipsis.
// Bytes that are not UTF-8 show as the replacement character.
[[nodiscard]] QString displayLine(std::string_view utf8, qsizetype limit = kLongestLine);

// The text as several lines: every kind of line end becomes "\n", tabs stay, all other control characters
// become blanks, and marks that would turn the direction of what follows are left out. Nothing is cut.
[[nodiscard]] QString displayText(std::string_view utf8);

// Draws one line in the painter's font and pen at the left edge of the area, cut short where there is no room.
// Unless a direction is given the text runs in its own, so that the ellipsis stands where its reader would look
// for the rest; `elide` says what gives way. Returns the width of what was drawn.
int drawLine(QPainter& painter, const QRect& area, const QString& text,
             Qt::LayoutDirection direction = Qt::LayoutDirectionAuto, Qt::TextElideMode elide = Qt::ElideRight);

} // namespace fernwick
