#include "screens/menubar/PopoverTunnelList.h"

#include "screens/menubar/PopoverRowButton.h"
#include "screens/menubar/PopoverTunnelRow.h"

#include <QCoreApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>

namespace fernwick {

namespace {

// How far the button's ground reaches beyond the padding, so that its image ends where the texts above do.
constexpr int kOverhang = 6;

} // namespace

PopoverTunnelList::PopoverTunnelList(const Theme& theme, PopoverTunnelModel& model, QWidget* parent)
    : QListView(parent),
      rows_(model),
      delegate_(new PopoverTunnelRow(
          theme, model, [this](int row) { return highlight(row); }, this)),
      button_(new PopoverRowButton(theme, parent)) {
    setObjectName(QStringLiteral("popoverTunnelList"));
    setAccessibleName(QStringLiteral("Tunnels"));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setUniformItemSizes(true);
    setTabKeyNavigation(false);
    setMouseTracking(true);
    setItemDelegate(delegate_);
    setModel(&model);
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(delegate_->height());
    fading_.setStartValue(0.0);
    fading_.setEndValue(1.0);
    fading_.setDuration(kFadeTime);
    fading_.setEasingCurve(QEasingCurve::InOutSine);
    connect(&fading_, &QVariantAnimation::valueChanged, this, [this] { fade(); });
    button_->installEventFilter(this);
    connect(button_, &QAbstractButton::clicked, this, [this] { press(lit_); });
}

int PopoverTunnelList::wantedHeight() const {
    // Ten thousand rows still fit into the product.
    return std::min(rows_.rowCount() * delegate_->height(), kHeightLimit);
}

void PopoverTunnelList::reset() {
    QListView::reset();
    lit_ = -1;
    leaving_ = -1;
    byKeyboard_ = false;
    fading_.stop();
    button_->hide();
    scrollToTop();
}

void PopoverTunnelList::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                                    const QList<int>& /*roles*/) {
    // Past the list's own answer, which would lay out every row anew: all rows are of one size.
    QAbstractItemView::dataChanged(topLeft, bottomRight); // NOLINT(bugprone-parent-virtual-call)
    if (lit_ >= topLeft.row() && lit_ <= bottomRight.row()) {
        placeButton();
    }
}

bool PopoverTunnelList::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::MouseMove || event->type() == QEvent::Enter ||
        event->type() == QEvent::Leave) {
        lightUnderPointer();
    }
    // A press anywhere but on the button is nothing; it does not move the keyboard's row either.
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) {
        return true;
    }
    return QListView::viewportEvent(event);
}

bool PopoverTunnelList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == button_ && event->type() == QEvent::Leave) {
        lightUnderPointer();
    }
    if (watched == button_ && event->type() == QEvent::Wheel) {
        return QCoreApplication::sendEvent(viewport(), event); // it lies over the list
    }
    return QListView::eventFilter(watched, event);
}

void PopoverTunnelList::keyPressEvent(QKeyEvent* event) {
    const bool presses =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    if (presses && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        press(currentIndex().row());
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        event->ignore(); // the window's
        return;
    }
    window()->setAttribute(Qt::WA_KeyboardFocusChange); // from here on the ring shows
    QListView::keyPressEvent(event);
}

void PopoverTunnelList::focusInEvent(QFocusEvent* event) {
    // Not the toolkit's own answer, which would make the first row current when the popover opens.
    QAbstractScrollArea::focusInEvent(event); // NOLINT(bugprone-parent-virtual-call)
    const bool byKey = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (byKey && !currentIndex().isValid() && rows_.rowCount() > 0) {
        setCurrentIndex(rows_.index(0));
    }
    if (byKey) {
        byKeyboard_ = true;
        light(currentIndex().row());
    }
    viewport()->update();
}

void PopoverTunnelList::focusOutEvent(QFocusEvent* event) {
    QListView::focusOutEvent(event);
    lightUnderPointer();
}

void PopoverTunnelList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    byKeyboard_ = true;
    light(current.row());
}

void PopoverTunnelList::scrollContentsBy(int dx, int dy) {
    QListView::scrollContentsBy(dx, dy);
    if (!byKeyboard_ && viewport()->underMouse()) {
        lightUnderPointer();
    }
    placeButton();
}

void PopoverTunnelList::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    placeButton();
}

void PopoverTunnelList::lightUnderPointer() {
    const QPoint place = viewport()->mapFromGlobal(QCursor::pos());
    const bool inside = viewport()->rect().contains(place);
    byKeyboard_ = !inside && hasFocus();
    light(inside ? indexAt(place).row() : (byKeyboard_ ? currentIndex().row() : -1));
}

void PopoverTunnelList::light(int row) {
    if (row == lit_) {
        return;
    }
    repaintRow(leaving_);
    leaving_ = lit_;
    lit_ = row;
    fading_.stop();
    fading_.start();
    placeButton();
}

void PopoverTunnelList::placeButton() {
    if (lit_ < 0 || lit_ >= rows_.rowCount()) {
        button_->hide();
        return;
    }
    button_->setTunnel(rows_.tunnel(lit_).name, rows_.isActive(lit_));
    button_->setShown(highlight(lit_));
    const QRect row = visualRect(rows_.index(lit_));
    const QPoint place(row.right() + 1 - PopoverTunnelRow::kHorizontalPadding - button_->width() + kOverhang,
                       row.top() + (row.height() - button_->height()) / 2);
    // A row that is scrolled half out of sight shows half of its button.
    const QRect seen = viewport()->rect().translated(-place).intersected(button_->rect());
    if (seen.isEmpty()) {
        button_->hide();
        return;
    }
    button_->move(viewport()->mapTo(parentWidget(), place));
    button_->setMask(seen);
    button_->raise();
    button_->show();
}

void PopoverTunnelList::fade() {
    repaintRow(lit_);
    repaintRow(leaving_);
    button_->setShown(highlight(lit_));
    if (fading_.currentValue() == fading_.endValue()) {
        leaving_ = -1;
    }
}

void PopoverTunnelList::repaintRow(int row) {
    if (row >= 0 && row < rows_.rowCount()) {
        update(rows_.index(row));
    }
}

double PopoverTunnelList::highlight(int row) const {
    const double risen = fading_.currentValue().toDouble();
    if (row < 0) {
        return 0.0;
    }
    return row == lit_ ? risen : (row == leaving_ ? 1.0 - risen : 0.0);
}

void PopoverTunnelList::press(int row) {
    if (row >= 0 && row < rows_.rowCount() && onToggle) {
        onToggle(support::Uuid(rows_.tunnel(row).id)); // a copy: the rows may change meanwhile
    }
}

} // namespace fernwick
