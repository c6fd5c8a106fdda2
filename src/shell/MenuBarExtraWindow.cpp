#include "shell/MenuBarExtraWindow.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"
#include "shell/PopoverPlacement.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QStyleHintReturnMask>
#include <QStyleOption>
#include <QVBoxLayout>

namespace fernwick {

namespace {

QScreen& screenOf(const QRect& icon) {
    auto* screen = QGuiApplication::screenAt(icon.center());
    return screen != nullptr ? *screen : *QGuiApplication::primaryScreen();
}

} // namespace

MenuBarExtraWindow::MenuBarExtraWindow(MenuBarCommands& commands, TunnelTally& tally)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      theme_(commands.context().theme),
      popover_(new MenuBarPopover(commands, tally, this)) {
    setObjectName(QStringLiteral("menuBarExtraWindow"));
    setWindowTitle(QStringLiteral("Fernwick Menu"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1); // the border
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(popover_);
    popover_->onEntryChosen = [this] { dismiss(); };
}

void MenuBarExtraWindow::openBeside(const QRect& icon) {
    icon_ = icon;
    setAttribute(Qt::WA_KeyboardFocusChange, false); // no ring before the keyboard is used
    popover_->setHeightLimit(screenOf(icon_).availableGeometry().height() - 2);
    popover_->refresh();
    popover_->focusAfresh();
    adjustSize();
    place();
    show();
    raise();
    activateWindow();
}

void MenuBarExtraWindow::dismiss() {
    dismissing_ = true; // it loses the keyboard by that, too
    hide();
    dismissing_ = false;
}

void MenuBarExtraWindow::place() {
    const QScreen& screen = screenOf(icon_);
    move(popoverCorner(size(), icon_, {screen.geometry(), screen.availableGeometry()}));
}

bool MenuBarExtraWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && isVisible() && !dismissing_) {
        dismiss();
        if (onFocusLost) {
            onFocusLost();
        }
    }
    return QWidget::event(event);
}

void MenuBarExtraWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        dismiss();
        return;
    }
    QWidget::keyPressEvent(event);
}

void MenuBarExtraWindow::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    painter.fillRect(rect(), colors.window);
    stylepaint::roundedBox(painter, QRectF(rect()), colors.window, colors.border, grid::kControlRadius);
}

void MenuBarExtraWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // The corners are those of a menu.
    QStyleOption option;
    option.initFrom(this);
    QStyleHintReturnMask corners;
    if (style()->styleHint(QStyle::SH_Menu_Mask, &option, this, &corners) != 0) {
        setMask(corners.region);
    }
    if (isVisible()) {
        place(); // above an icon it grows upwards
    }
}

} // namespace fernwick
