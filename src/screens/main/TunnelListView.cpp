#include "screens/main/TunnelListView.h"

#include "screens/main/TunnelListModel.h"
#include "screens/theme/Grid.h"
#include "screens/theme/ListKeys.h"

#include <QContextMenuEvent>
#include <QKeyEvent>

#include <algorithm>

namespace fernwick {

TunnelListView::TunnelListView(const Theme& theme, QWidget* parent) : QListView(parent) {
    setFont(theme.font(13));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover);
    viewport()->setAutoFillBackground(false);
    setViewportMargins(0, grid::kTight, 0, 0);
}

void TunnelListView::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                                 const QList<int>& roles) {
    if (roles == QList<int>{TunnelListModel::kStatusRole}) {
        // Past the list's own answer, which would lay out every row anew: a status moves none.
        QAbstractItemView::dataChanged(topLeft, bottomRight, roles); // NOLINT(bugprone-parent-virtual-call)
    } else {
        QListView::dataChanged(topLeft, bottomRight, roles);
    }
}

void TunnelListView::keyPressEvent(QKeyEvent* event) {
    if (chooseFirst(*this, *event)) {
        return;
    }
    const bool wantsDelete = event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace;
    if (!wantsDelete || event->modifiers() != Qt::NoModifier) {
        QListView::keyPressEvent(event);
        return;
    }
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedIndexes()) {
        rows.push_back(index.row());
    }
    std::ranges::sort(rows);
    if (onDelete && !rows.empty()) {
        onDelete(std::move(rows));
    }
}

void TunnelListView::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
    if (!index.isValid() || !onMenu) {
        return;
    }
    onMenu(index.row(), byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

} // namespace fernwick
