// Where the popover goes: beside its icon, inside the screen. Threads: any.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace fernwick {

// The screen that the icon is on: all of it, and what panels leave of it.
struct PopoverScreen {
    QRect whole;
    QRect available;
};

// The top left corner of a popover of that size beside an icon: on the screen's side of a panel that keeps its
// room to itself, otherwise below an icon in the upper half and above one in the lower. Centred on the icon as
// far as the screen has room; a popover that is larger than the screen begins at its top left corner.
[[nodiscard]] QPoint popoverCorner(QSize popover, const QRect& icon, const PopoverScreen& screen);

} // namespace fernwick
