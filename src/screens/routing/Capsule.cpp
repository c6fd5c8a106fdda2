#include "screens/routing/Capsule.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>

#include <utility>

namespace fernwick {

namespace {

constexpr int kPadding = 7;
constexpr int kIconSize = 11;
constexpr int kIconGap = 3;
constexpr int kAboveText = 2;

int iconRoom(const CapsuleLook& look) {
    return look.icon ? kIconSize + kIconGap : 0;
}

} // namespace

QSize capsuleSize(const QFontMetrics& metrics, const CapsuleLook& look) {
    return {metrics.horizontalAdvance(look.text) + 1 + iconRoom(look) + 2 * kPadding,
            metrics.height() + 2 * kAboveText};
}

void paintCapsule(QPainter& painter, const QRect& area, const CapsuleLook& look, const Theme& theme) {
    const QColor& color = theme.colors().*look.color;
    stylepaint::roundedBox(painter, QRectF(area), withOpacity(color, look.opacity), Qt::transparent,
                           area.height() / 2.0);
    QRect inside = area.adjusted(kPadding, 0, -kPadding, 0);
    if (look.icon) {
        theme.icons().paint(painter, *look.icon, color,
                            QRectF(inside.left(), inside.top(), kIconSize, inside.height()), kIconSize);
        inside.setLeft(inside.left() + iconRoom(look));
    }
    painter.setPen(color);
    drawLine(painter, inside, look.text);
}

Capsule::Capsule(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {
    setFont(theme.font(10, QFont::DemiBold));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Capsule::setLook(CapsuleLook look) {
    look_ = std::move(look);
    setAccessibleName(look_.text);
    updateGeometry();
    update();
}

void Capsule::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setFont(font());
    paintCapsule(painter, rect(), look_, theme_);
}

} // namespace fernwick
