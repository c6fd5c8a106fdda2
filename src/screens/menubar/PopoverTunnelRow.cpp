#include "screens/menubar/PopoverTunnelRow.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StatusColors.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr int kDotSize = 8;
constexpr int kDotGap = 10;
constexpr int kRetrySize = 6;
constexpr int kLineGap = 1;
constexpr double kHoverOpacity = 0.06;

} // namespace

PopoverTunnelRow::PopoverTunnelRow(const Theme& theme, const PopoverTunnelModel& model, Highlight highlight,
                                   QObject* parent)
    : QStyledItemDelegate(parent),
      theme_(theme),
      model_(model),
      highlight_(std::move(highlight)),
      nameFont_(theme.font(12, QFont::Medium)),
      endpointFont_(theme.monospaced(10)),
      nameMetrics_(nameFont_),
      endpointMetrics_(endpointFont_) {}

int PopoverTunnelRow::height() const {
    return std::max(kHeight,
                    nameMetrics_.height() + kLineGap + endpointMetrics_.height() + 2 * kVerticalPadding);
}

QSize PopoverTunnelRow::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) const {
    return {1, height()}; // the list gives every row its own width
}

void PopoverTunnelRow::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    const Palette& colors = theme_.colors();
    const double shown = highlight_(index.row());
    painter->save();
    painter->setClipRect(option.rect);
    if (shown > 0) {
        painter->fillRect(option.rect, withOpacity(colors.text, kHoverOpacity * shown));
    }
    if (option.state.testFlag(QStyle::State_HasFocus) &&
        option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        stylepaint::focusRing(*painter, QRectF(option.rect).adjusted(grid::kTight, 1, -grid::kTight, -1),
                              colors.accent, grid::kControlRadius);
    }
    const QRect content = option.rect.adjusted(kHorizontalPadding, 0, -kHorizontalPadding, 0);
    const QRect dot(content.left(), content.center().y() - kDotSize / 2 + 1, kDotSize, kDotSize);
    paintDot(*painter, QRectF(dot), model_.status(index.row()));
    const int left = dot.right() + 1 + kDotGap;
    const int taken = shown > 0 ? kButtonSize + grid::kTight : 0;
    const int height = nameMetrics_.height() + kLineGap + endpointMetrics_.height();
    QRect line(left, content.top() + (content.height() - height) / 2, content.right() + 1 - left - taken,
               nameMetrics_.height());
    const PopoverTunnel& tunnel = model_.tunnel(index.row());
    painter->setFont(nameFont_);
    painter->setPen(colors.text);
    drawLine(*painter, line, tunnel.name);
    line = QRect(line.left(), line.bottom() + 1 + kLineGap, line.width(), endpointMetrics_.height());
    painter->setFont(endpointFont_);
    painter->setPen(colors.secondary);
    drawLine(*painter, line, tunnel.endpoint, Qt::LeftToRight);
    painter->restore();
}

void PopoverTunnelRow::paintDot(QPainter& painter, const QRectF& area,
                                const std::optional<TunnelStatus>& status) const {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(statusColor(status, theme_.colors()));
    painter.drawEllipse(area);
    if (status && status->kind() == TunnelStatus::Kind::error) {
        theme_.icons().paint(painter, Icon::arrowClockwise, Qt::white, area, kRetrySize);
    }
}

} // namespace fernwick
