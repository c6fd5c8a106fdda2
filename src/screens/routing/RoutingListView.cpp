#include "screens/routing/RoutingListView.h"

#include "screens/theme/Grid.h"
#include "screens/theme/ListKeys.h"
#include "screens/theme/StylePaint.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleOptionViewItem>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr platform::Duration kEdgeInterval{30};
constexpr int kEdge = 24; // from the top and bottom, where a dragged row scrolls the list
constexpr int kEdgeStep = 12;
constexpr int kLiftedInset = 18; // of the row that is dragged
constexpr double kLiftedOpacity = 0.92;
constexpr int kGapInset = 8;
constexpr int kGapKnob = 3; // radius
constexpr double kGapWidth = 2.0;

} // namespace

RoutingListView::RoutingListView(const Theme& theme, platform::Dispatch& dispatch, ListGestures gestures,
                                 QWidget* parent)
    : QListView(parent), theme_(theme), dispatch_(dispatch), gestures_(std::move(gestures)) {
    setFont(theme.font(13));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setUniformItemSizes(true);
    setTabKeyNavigation(false);
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover);
    viewport()->setAutoFillBackground(false);
    setViewportMargins(0, grid::kTight, 0, 0);
}

void RoutingListView::setModel(QAbstractItemModel* model) {
    QListView::setModel(model);
    // What is dragged is a row by its number, which means another one now.
    connect(model, &QAbstractItemModel::modelReset, this, [this] { endDrag(); });
    connect(model, &QAbstractItemModel::rowsInserted, this, [this] { endDrag(); });
    connect(model, &QAbstractItemModel::rowsRemoved, this, [this] { endDrag(); });
}

int RoutingListView::selectedRow() const {
    const auto chosen = selectionModel()->selectedIndexes();
    return chosen.isEmpty() ? -1 : chosen.first().row();
}

void RoutingListView::keyPressEvent(QKeyEvent* event) {
    if (drag_ && drag_->moving && event->key() == Qt::Key_Escape) {
        endDrag();
        return;
    }
    if (!askedByKey(*event) && !chooseFirst(*this, *event)) {
        QListView::keyPressEvent(event);
    }
}

bool RoutingListView::askedByKey(const QKeyEvent& event) {
    const int row = selectedRow();
    if (row < 0) {
        return false;
    }
    const auto ask = [row](const std::function<void(int)>& gesture) {
        if (gesture) {
            gesture(row);
        }
        return static_cast<bool>(gesture);
    };
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (modifiers == Qt::AltModifier && event.key() == Qt::Key_Up) {
        if (row > 0) {
            gestures_.move(row, row - 1);
        }
        return true;
    }
    if (modifiers == Qt::AltModifier && event.key() == Qt::Key_Down) {
        if (row + 1 < model()->rowCount()) {
            gestures_.move(row, row + 2);
        }
        return true;
    }
    if (modifiers == Qt::ShiftModifier && event.key() == Qt::Key_F10) {
        openMenu(row, viewport()->mapToGlobal(visualRect(model()->index(row, 0)).center()));
        return true;
    }
    if (modifiers != Qt::NoModifier) {
        return false;
    }
    switch (event.key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        return ask(gestures_.remove);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return ask(gestures_.edit);
    case Qt::Key_Space:
        return ask(gestures_.toggle);
    default:
        return false;
    }
}

void RoutingListView::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? model()->index(selectedRow(), 0) : indexAt(event->pos());
    if (index.isValid()) {
        openMenu(index.row(), byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
    }
}

void RoutingListView::openMenu(int row, QPoint where) {
    if (QApplication::activePopupWidget() == nullptr) { // a key may ask by itself and through the window system
        gestures_.menu(row, where);
    }
}

void RoutingListView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    drag_.reset();
    if (event->button() == Qt::LeftButton && index.isValid()) {
        const QPoint where = event->position().toPoint();
        drag_ = Drag{index.row(), where.y() - visualRect(index).top(), where, where};
    }
    QListView::mousePressEvent(event);
}

// Past the list's own answer while a button is down, which would choose every row on the way.
void RoutingListView::mouseMoveEvent(QMouseEvent* event) {
    if (!drag_ || !event->buttons().testFlag(Qt::LeftButton)) {
        QListView::mouseMoveEvent(event);
        return;
    }
    drag_->now = event->position().toPoint();
    if (!drag_->moving &&
        (drag_->now - drag_->pressed).manhattanLength() >= QApplication::startDragDistance()) {
        drag_->moving = true;
        edgeTimer_ = dispatch_.repeatingTimer(kEdgeInterval, [this] { scrollAtEdge(); });
    }
    viewport()->update();
}

void RoutingListView::mouseReleaseEvent(QMouseEvent* event) {
    const auto drag = drag_;
    endDrag();
    QListView::mouseReleaseEvent(event);
    if (!drag || !drag->moving || event->button() != Qt::LeftButton) {
        return;
    }
    const int before = gapAt(event->position().toPoint().y());
    if (before != drag->row && before != drag->row + 1) {
        gestures_.move(drag->row, before);
    }
}

void RoutingListView::focusOutEvent(QFocusEvent* event) {
    endDrag();
    QListView::focusOutEvent(event);
}

void RoutingListView::endDrag() {
    drag_.reset();
    edgeTimer_.reset();
    viewport()->update();
}

int RoutingListView::gapAt(int y) const {
    const int rows = model()->rowCount();
    const QRect first = visualRect(model()->index(0, 0));
    if (rows == 0 || first.height() <= 0) {
        return 0;
    }
    const int above = y - first.top() + first.height() / 2;
    return std::clamp(above >= 0 ? above / first.height() : 0, 0, rows);
}

void RoutingListView::scrollAtEdge() {
    const int y = drag_ ? drag_->now.y() : 0;
    auto* bar = verticalScrollBar();
    if (drag_ && y < kEdge) {
        bar->setValue(bar->value() - kEdgeStep);
    } else if (drag_ && y > viewport()->height() - kEdge) {
        bar->setValue(bar->value() + kEdgeStep);
    }
}

void RoutingListView::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (drag_ && drag_->moving) {
        QPainter painter(viewport());
        paintDrag(painter);
    }
}

// The line is under the row that is dragged and wider than it, so that both can be read.
void RoutingListView::paintDrag(QPainter& painter) const {
    const QModelIndex index = model()->index(drag_->row, 0);
    const QRect row = visualRect(index);
    const Palette& colors = theme_.colors();
    const int gap = visualRect(model()->index(0, 0)).top() + gapAt(drag_->now.y()) * row.height();
    const int y = std::clamp(gap, kGapKnob + 1, viewport()->height() - kGapKnob - 1);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colors.accent, kGapWidth));
    painter.drawEllipse(QPoint(kGapInset, y), kGapKnob, kGapKnob);
    painter.drawLine(kGapInset + kGapKnob, y, viewport()->width() - kGapInset, y);

    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = QRect(QPoint(row.left(), drag_->now.y() - drag_->grip), row.size())
                      .adjusted(kLiftedInset, 0, -kLiftedInset, 0);
    option.state &= ~(QStyle::State_Selected | QStyle::State_HasFocus | QStyle::State_MouseOver);
    painter.setOpacity(kLiftedOpacity);
    stylepaint::roundedBox(painter, QRectF(option.rect.adjusted(kGapKnob, 1, -kGapKnob, -1)), colors.popup,
                           colors.border, grid::kControlRadius);
    itemDelegateForIndex(index)->paint(&painter, option, index);
}

} // namespace fernwick
