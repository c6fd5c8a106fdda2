#include "screens/main/TunnelRowDelegate.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StatusColors.h"
#include "screens/theme/StylePaint.h"
#include "screens/theme/TagColors.h"
#include "screens/theme/TypeIcons.h"

#include <QPainter>

namespace fernwick {

namespace {

constexpr int kMarkSize = 20;
constexpr double kDotSize = 8.0;
constexpr double kHaloOpacity = 0.2;
constexpr double kRingOpacity = 0.6;
constexpr double kRingWidth = 1.5;
constexpr int kTypeIconSize = 13;
constexpr int kRackIconSize = 12;
constexpr int kOuterMargin = 8; // between the window's edge and the ground of a chosen row
constexpr int kInnerMargin = 8;
constexpr int kRowPadding = 8;
constexpr int kLineGap = 2;
constexpr int kTextIndent = 28;
constexpr int kTagPadding = 6;
constexpr int kTagGap = 4;
constexpr double kTagGroundOpacity = 0.15;
constexpr double kRowRadius = 8.0;

} // namespace

TunnelRowDelegate::TunnelRowDelegate(const Theme& theme, const TunnelListModel& model, QObject* parent)
    : QStyledItemDelegate(parent),
      theme_(theme),
      model_(model),
      nameFont_(theme.font(13, QFont::Medium)),
      loginFont_(theme.font(11)),
      tagFont_(theme.font(9, QFont::Medium)),
      nameMetrics_(nameFont_),
      loginMetrics_(loginFont_),
      tagMetrics_(tagFont_) {}

QSize TunnelRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& index) const {
    int height = 2 * kRowPadding + nameMetrics_.height() + kLineGap + loginMetrics_.height();
    if (model_.hasTags(index.row())) {
        height += grid::kTight + 1 + tagMetrics_.height() + 2;
    }
    // The list gives every row its own width.
    return {1, height};
}

void TunnelRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    const Palette& colors = theme_.colors();
    const QRect ground = option.rect.adjusted(kOuterMargin, 1, -kOuterMargin, -1);
    painter->save();
    painter->setClipRect(option.rect);
    if (option.state.testFlag(QStyle::State_Selected)) {
        stylepaint::roundedBox(*painter, QRectF(ground), colors.selection, Qt::transparent, kRowRadius);
    } else if (option.state.testFlag(QStyle::State_MouseOver)) {
        stylepaint::roundedBox(*painter, QRectF(ground), colors.hover, Qt::transparent, kRowRadius);
    }
    if (option.state.testFlag(QStyle::State_HasFocus) &&
        option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        stylepaint::focusRing(*painter, QRectF(ground), colors.accent, kRowRadius);
    }
    const QRect content = ground.adjusted(kInnerMargin, kRowPadding - 1, -kInnerMargin, -kRowPadding + 1);
    const Tunnel& tunnel = model_.tunnel(index.row());
    const int textHeight = nameMetrics_.height() + kLineGap + loginMetrics_.height();
    paintMark(*painter,
              QRectF(QRect(content.left(), content.top() + (textHeight - kMarkSize) / 2, kMarkSize, kMarkSize)),
              model_.status(index.row()));
    QRect line(content.left() + kTextIndent, content.top(), content.width() - kTextIndent,
               nameMetrics_.height());
    paintName(*painter, line, tunnel);
    line.translate(0, nameMetrics_.height() + kLineGap);
    line.setHeight(loginMetrics_.height());
    paintLogin(*painter, line, tunnel);
    line.translate(0, loginMetrics_.height() + grid::kTight + 1);
    line.setHeight(tagMetrics_.height() + 2);
    paintTags(*painter, line, index.row());
    painter->restore();
}

void TunnelRowDelegate::paintMark(QPainter& painter, const QRectF& area,
                                  const std::optional<TunnelStatus>& status) const {
    const QColor color = statusColor(status, theme_.colors());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(withOpacity(color, kHaloOpacity));
    painter.drawEllipse(area);
    painter.setBrush(color);
    painter.drawEllipse(area.center(), kDotSize / 2, kDotSize / 2);
    if (status && status->kind() == TunnelStatus::Kind::connecting) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(withOpacity(color, kRingOpacity), kRingWidth));
        const double inset = kRingWidth / 2;
        painter.drawEllipse(area.adjusted(inset, inset, -inset, -inset));
    }
    painter.restore();
}

void TunnelRowDelegate::paintName(QPainter& painter, const QRect& line, const Tunnel& tunnel) const {
    const int room = line.width() - kTypeIconSize - grid::kTight - 1;
    painter.setFont(nameFont_);
    painter.setPen(theme_.colors().text);
    const int used =
        drawLine(painter, QRect(line.left(), line.top(), room, line.height()), displayLine(tunnel.name));
    theme_.icons().paint(
        painter, iconOf(tunnel.tunnelType), theme_.colors().secondary,
        QRectF(line.left() + used + grid::kTight + 1, line.top(), kTypeIconSize, line.height()), kTypeIconSize);
}

void TunnelRowDelegate::paintLogin(QPainter& painter, const QRect& line, const Tunnel& tunnel) const {
    const QColor& color = theme_.colors().secondary;
    theme_.icons().paint(painter, Icon::server, color,
                         QRectF(line.left(), line.top(), kRackIconSize, line.height()), kRackIconSize);
    const QRect area = line.adjusted(kRackIconSize + grid::kTight, 0, 0, 0);
    painter.setFont(loginFont_);
    painter.setPen(color);
    // Each part has a limit of its own, so that a long user cannot hide the host.
    drawLine(painter, area, displayLine(tunnel.user) + QLatin1Char('@') + displayLine(tunnel.host),
             Qt::LeftToRight);
}

void TunnelRowDelegate::paintTags(QPainter& painter, const QRect& line, int row) const {
    int left = line.left();
    painter.setFont(tagFont_);
    for (const TunnelTag* tag : model_.tags(row)) {
        const int room = line.right() - left - 2 * kTagPadding;
        if (room < tagMetrics_.averageCharWidth() * 2) {
            return;
        }
        const QString name = tagMetrics_.elidedText(displayLine(tag->name), Qt::ElideRight, room);
        const int width = tagMetrics_.horizontalAdvance(name) + 2 * kTagPadding;
        const QRect capsule(left, line.top(), width, line.height());
        const QColor color = tagColor(tag->colorHex, theme_.colors());
        stylepaint::roundedBox(painter, QRectF(capsule), withOpacity(color, kTagGroundOpacity), Qt::transparent,
                               capsule.height() / 2.0);
        painter.setPen(color);
        painter.drawText(capsule, Qt::AlignCenter | Qt::TextSingleLine, name);
        left += width + kTagGap;
    }
}

} // namespace fernwick
