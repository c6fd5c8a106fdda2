#include "screens/detail/ConnectButton.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>
#include <QTimerEvent>

namespace fernwick {

namespace {

constexpr int kIconSize = 16;
constexpr int kPadding = 14;
constexpr int kGap = 6;
constexpr double kStopOpacity = 0.9;
constexpr double kSpinnerScale = 0.6;
constexpr double kSpinnerWidth = 1.75;
constexpr int kFrameMilliseconds = 33;
constexpr int kStepDegrees = 12;
constexpr int kSixteenths = 16; // QPainter's unit of an angle
constexpr int kArcDegrees = 270;

} // namespace

ConnectButton::ConnectButton(const Theme& theme, QWidget* parent) : QPushButton(parent), theme_(theme) {
    setObjectName(QStringLiteral("connectButton"));
    setFont(theme.font(13, QFont::Medium));
    setAttribute(Qt::WA_Hover);
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setStatus(std::nullopt);
}

void ConnectButton::setStatus(const std::optional<TunnelStatus>& status) {
    status_ = status;
    setText(status && status->isActive() ? QStringLiteral("Stop") : QStringLiteral("Connect"));
    spinIfNeeded();
    update();
}

QSize ConnectButton::sizeHint() const {
    // As wide as its widest text, so that what stands beside it does not move.
    const int width = std::max(fontMetrics().horizontalAdvance(QStringLiteral("Connect")),
                               fontMetrics().horizontalAdvance(QStringLiteral("Stop")));
    return {width + kIconSize + kGap + 2 * kPadding, grid::kControlHeight + 2};
}

void ConnectButton::spinIfNeeded() {
    const bool connecting = status_ && status_->kind() == TunnelStatus::Kind::connecting;
    if (connecting && isVisible()) {
        timer_.start(kFrameMilliseconds, this);
    } else {
        timer_.stop();
    }
}

void ConnectButton::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    const bool active = status_ && status_->isActive();
    QPainter painter(this);
    stylepaint::roundedBox(painter, QRectF(rect()),
                           active ? withOpacity(colors.red, kStopOpacity) : colors.accent, Qt::transparent,
                           grid::kControlRadius);
    const QColor shade = isDown() ? colors.pressed : (underMouse() ? colors.hover : QColor(Qt::transparent));
    stylepaint::roundedBox(painter, QRectF(rect()), shade, Qt::transparent, grid::kControlRadius);
    if (hasFocus()) {
        stylepaint::focusRing(painter, QRectF(rect()).adjusted(2, 2, -2, -2), colors.onAccent,
                              grid::kControlRadius - 2);
    }
    painter.setFont(font());
    const int width = kIconSize + kGap + fontMetrics().horizontalAdvance(text());
    const QRectF icon(QRect((this->width() - width) / 2, (height() - kIconSize) / 2, kIconSize, kIconSize));
    if (status_ && status_->kind() == TunnelStatus::Kind::connecting) {
        paintSpinner(painter, icon);
    } else {
        theme_.icons().paint(painter, active ? Icon::stopCircle : Icon::playCircle, colors.onAccent, icon,
                             kIconSize);
    }
    painter.setPen(colors.onAccent);
    painter.drawText(QRectF(icon.right() + kGap, 0, this->width() - icon.right(), height()),
                     Qt::AlignLeft | Qt::AlignVCenter, text());
}

void ConnectButton::paintSpinner(QPainter& painter, const QRectF& area) const {
    const double side = kIconSize * kSpinnerScale + 2;
    const QRectF circle(area.center().x() - side / 2, area.center().y() - side / 2, side, side);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme_.colors().onAccent, kSpinnerWidth, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(circle, -angle_ * kSixteenths, kArcDegrees * kSixteenths);
    painter.restore();
}

void ConnectButton::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timer_.timerId()) {
        QPushButton::timerEvent(event);
        return;
    }
    angle_ = (angle_ + kStepDegrees) % 360;
    update();
}

void ConnectButton::showEvent(QShowEvent* event) {
    QPushButton::showEvent(event);
    spinIfNeeded();
}

void ConnectButton::hideEvent(QHideEvent* event) {
    QPushButton::hideEvent(event);
    spinIfNeeded();
}

} // namespace fernwick
