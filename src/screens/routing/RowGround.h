// The ground of a row in a list, with what the pointer and the keyboard add to it, and the room inside.
// Threads: main thread only.
#pragma once

#include "screens/theme/StylePaint.h"
#include "screens/theme/Theme.h"

#include <QStyleOptionViewItem>

namespace fernwick {

inline constexpr int kRowPadding = 8; // above and below what a row shows

// Draws the ground and returns the area that is left for the row's content.
inline QRect paintRowGround(QPainter& painter, const QStyleOptionViewItem& option, const Palette& colors) {
    constexpr int kOuterMargin = 8; // between the list's edge and the ground of a chosen row
    constexpr int kInnerMargin = 8;
    constexpr double kRadius = 8.0;
    const QRect ground = option.rect.adjusted(kOuterMargin, 1, -kOuterMargin, -1);
    if (option.state.testFlag(QStyle::State_Selected)) {
        stylepaint::roundedBox(painter, QRectF(ground), colors.selection, Qt::transparent, kRadius);
    } else if (option.state.testFlag(QStyle::State_MouseOver)) {
        stylepaint::roundedBox(painter, QRectF(ground), colors.hover, Qt::transparent, kRadius);
    }
    if (option.state.testFlag(QStyle::State_HasFocus) &&
        option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        stylepaint::focusRing(painter, QRectF(ground), colors.accent, kRadius);
    }
    return ground.adjusted(kInnerMargin, kRowPadding - 1, -kInnerMargin, -kRowPadding + 1);
}

} // namespace fernwick
