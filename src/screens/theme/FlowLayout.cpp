#include "screens/theme/FlowLayout.h"

#include <QWidget>

#include <algorithm>

namespace fernwick {

namespace {

QList<QSize> naturalSizes(const QList<QLayoutItem*>& items) {
    QList<QSize> sizes;
    sizes.reserve(items.size());
    for (const QLayoutItem* item : items) {
        sizes.append(item->sizeHint());
    }
    return sizes;
}

} // namespace

FlowPlaces flowPlaces(const QList<QSize>& items, int spacing, std::optional<int> width) {
    FlowPlaces flow;
    flow.places.reserve(items.size());
    int x = 0;
    int y = 0;
    int rowHeight = 0;
    bool rowIsEmpty = true;
    for (const QSize& item : items) {
        if (width && !rowIsEmpty && x + item.width() > *width) {
            x = 0;
            y += rowHeight + spacing;
            rowHeight = 0;
        }
        flow.places.append(QPoint(x, y));
        x += item.width() + spacing;
        rowHeight = std::max(rowHeight, item.height());
        rowIsEmpty = false;
    }
    flow.size = QSize(width.value_or(0), std::max(y + rowHeight, 0));
    return flow;
}

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
    const auto flow = flowPlaces(naturalSizes(shown()), spacing(), width - margins.left() - margins.right());
    return flow.size.height() + margins.top() + margins.bottom();
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
    const bool mirrored = parentWidget() != nullptr && parentWidget()->layoutDirection() == Qt::RightToLeft;
    const QRect inside = area.marginsRemoved(contentsMargins());
    const auto items = shown();
    const auto sizes = naturalSizes(items);
    const auto flow = flowPlaces(sizes, spacing(), inside.width());
    for (qsizetype at = 0; at < items.size(); ++at) {
        const QPoint place = flow.places[at];
        const int left =
            mirrored ? inside.right() + 1 - place.x() - sizes[at].width() : inside.left() + place.x();
        items[at]->setGeometry(QRect(QPoint(left, inside.top() + place.y()), sizes[at]));
    }
}

QList<QLayoutItem*> FlowLayout::shown() const {
    QList<QLayoutItem*> shown;
    std::ranges::copy_if(items_, std::back_inserter(shown), [](const auto* item) { return !item->isEmpty(); });
    return shown;
}

} // namespace fernwick
