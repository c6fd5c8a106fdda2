#include "screens/detail/StatusMark.h"

#include "screens/theme/StatusColors.h"

#include <QPainter>

namespace fernwick {

namespace {

constexpr int kSize = 28;
constexpr double kDotSize = 12.0;
constexpr double kDiscOpacity = 0.15;

} // namespace

StatusMark::StatusMark(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    setFixedSize(kSize, kSize);
}

void StatusMark::setStatus(const std::optional<TunnelStatus>& status) {
    status_ = status;
    update();
}

void StatusMark::paintEvent(QPaintEvent* /*event*/) {
    const QColor color = statusColor(status_, theme_.colors());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withOpacity(color, kDiscOpacity));
    painter.drawEllipse(QRectF(rect()));
    painter.setBrush(color);
    painter.drawEllipse(QRectF(rect()).center(), kDotSize / 2, kDotSize / 2);
}

} // namespace fernwick
