#include "screens/theme/FlowLayout.h"

#include <QWidget>

#include <algorithm>

namespace fernwick {

FlowLayout::FlowLayout(QWidget* parent, int spacing) : QLayout(parent) {
    setContentsMargins(0, 0, 0, 0);
    setSpacing(spacing);
}

FlowLayout::~FlowLayout() {
    qDeleteAll(items_);
}

QLayoutItem* FlowLayout::takeAt(int index) {
    return index >= 0 && index < items_.size() ? items_.takeAt(index) : nullptr;
}

int FlowLayout::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    const QRect inside = QRect(0, 0, width, 0).marginsRemoved(margins);
    return flow(inside, false) + margins.top() + margins.bottom();
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (const QLayoutItem* item : items_) {
        size = size.expandedTo(item->minimumSize());
    }
    return size.grownBy(contentsMargins());
}

void FlowLayout::setGeometry(const QRect& area) {
    QLayout::setGeometry(area);
    flow(area.marginsRemoved(contentsMargins()), true);
}

int FlowLayout::flow(const QRect& area, bool place) const {
    const bool mirrored = parentWidget() != nullptr && parentWidget()->layoutDirection() == Qt::RightToLeft;
    int along = 0;
    int down = 0;
    int lineHeight = 0;
    for (QLayoutItem* item : items_) {
        const QSize size = item->sizeHint().boundedTo(QSize(std::max(area.width(), 1), QWIDGETSIZE_MAX));
        if (along > 0 && along + size.width() > area.width()) {
            along = 0;
            down += lineHeight + spacing();
            lineHeight = 0;
        }
        if (place) {
            const int left = mirrored ? area.right() + 1 - along - size.width() : area.left() + along;
            item->setGeometry(QRect(QPoint(left, area.top() + down), size));
        }
        along += size.width() + spacing();
        lineHeight = std::max(lineHeight, size.height());
    }
    return down + lineHeight;
}

} // namespace fernwick
