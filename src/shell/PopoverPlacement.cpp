#include "shell/PopoverPlacement.h"

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kGap = 4; // between the icon and the popover

// `wanted` moved so that `size` lies between the two edges; the first edge goes before the second.
int within(int wanted, int size, int first, int last) {
    return std::max(std::min(wanted, last - size + 1), first);
}

} // namespace

QPoint popoverCorner(QSize popover, const QRect& icon, const PopoverScreen& screen) {
    const QRect& room = screen.available;
    const QPoint middle = icon.center();
    QPoint corner(middle.x() - popover.width() / 2, middle.y() - popover.height() / 2);
    if (middle.x() < room.left()) {
        corner.setX(icon.right() + 1 + kGap);
    } else if (middle.x() > room.right()) {
        corner.setX(icon.left() - kGap - popover.width());
    } else if (middle.y() <= screen.whole.center().y()) {
        corner.setY(icon.bottom() + 1 + kGap);
    } else {
        corner.setY(icon.top() - kGap - popover.height());
    }
    return {within(corner.x(), popover.width(), room.left(), room.right()),
            within(corner.y(), popover.height(), room.top(), room.bottom())};
}

} // namespace fernwick
