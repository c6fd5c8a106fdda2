#include "screens/detail/LogListView.h"

#include "screens/detail/LogRowDelegate.h"
#include "screens/theme/Grid.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kScrollMilliseconds = 250;

} // namespace

LogListView::LogListView(const Theme& theme, LogListModel& model, QWidget* parent)
    : QListView(parent),
      model_(model),
      rows_(new LogRowDelegate(theme, model, this)),
      scrolling_(verticalScrollBar(), "value") {
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setResizeMode(QListView::Adjust);
    viewport()->setAutoFillBackground(false);
    setItemDelegate(rows_);
    setModel(&model);
    scrolling_.setDuration(kScrollMilliseconds);
    scrolling_.setEasingCurve(QEasingCurve::InOutQuad);
}

void LogListView::scrollToEnd() {
    executeDelayedItemsLayout();
    auto* bar = verticalScrollBar();
    scrolling_.stop();
    if (!isVisible()) {
        bar->setValue(bar->maximum());
        return;
    }
    scrolling_.setStartValue(bar->value());
    scrolling_.setEndValue(bar->maximum());
    scrolling_.start();
}

void LogListView::copySelection() const {
    auto chosen = selectionModel()->selectedIndexes();
    std::ranges::sort(chosen, {}, &QModelIndex::row);
    QStringList lines;
    for (const QModelIndex& index : chosen) {
        lines.append(model_.copyText(index.row()));
    }
    if (!lines.isEmpty()) {
        QApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
    }
}

void LogListView::resizeEvent(QResizeEvent* event) {
    QListView::resizeEvent(event);
    if (rows_->setRowWidth(viewport()->width())) {
        scheduleDelayedItemsLayout();
    }
}

void LogListView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        return;
    }
    QListView::keyPressEvent(event);
}

void LogListView::contextMenuEvent(QContextMenuEvent* event) {
    if (!selectionModel()->hasSelection()) {
        return;
    }
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("logMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QStringLiteral("Copy"), this, [this] { copySelection(); });
    menu->addAction(QStringLiteral("Select All"), this, [this] { selectAll(); });
    menu->popup(event->globalPos());
}

} // namespace fernwick
