#include "screens/menubar/PopoverRowButton.h"

#include "screens/menubar/PopoverTunnelRow.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>

namespace fernwick {

namespace {

constexpr int kImageSize = 11;

} // namespace

PopoverRowButton::PopoverRowButton(const Theme& theme, QWidget* parent)
    : QAbstractButton(parent), theme_(theme) {
    setObjectName(QStringLiteral("popoverRowButton"));
    setFocusPolicy(Qt::NoFocus); // the keyboard presses it by its row
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::ArrowCursor);
    resize(sizeHint());
    hide();
}

void PopoverRowButton::setTunnel(const QString& name, bool isActive) {
    stops_ = isActive;
    setAccessibleName((isActive ? QStringLiteral("Disconnect %1") : QStringLiteral("Connect %1")).arg(name));
    update();
}

void PopoverRowButton::setShown(double shown) {
    shown_ = shown;
    update();
}

QSize PopoverRowButton::sizeHint() const {
    return {PopoverTunnelRow::kButtonSize, PopoverTunnelRow::kButtonSize};
}

void PopoverRowButton::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    painter.setOpacity(shown_);
    if (isDown() || underMouse()) {
        stylepaint::roundedBox(painter, QRectF(rect()), isDown() ? colors.pressed : colors.hover,
                               Qt::transparent, grid::kControlRadius - 1);
    }
    theme_.icons().paint(painter, stops_ ? Icon::stop : Icon::play, stops_ ? colors.red : colors.green,
                         QRectF(rect()), kImageSize);
}

} // namespace fernwick
