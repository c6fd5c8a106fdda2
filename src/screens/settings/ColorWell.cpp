#include "screens/settings/ColorWell.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"
#include "screens/theme/TagColors.h"

#include <QColorDialog>
#include <QPainter>

namespace fernwick {

namespace {

constexpr int kWidth = 44;
constexpr int kInset = 4; // between the frame and the colour

} // namespace

ColorWell::ColorWell(const Theme& theme, const QString& name, const QColor& color, QWidget* parent)
    : QAbstractButton(parent), theme_(theme) {
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setColor(color);
    connect(this, &QAbstractButton::clicked, this, [this] { choose(); });
}

void ColorWell::setColor(const QColor& color) {
    color_ = color;
    const QString hex = QString::fromStdString(tagColorHex(color));
    setAccessibleDescription(hex);
    setToolTip(hex);
    update();
}

QSize ColorWell::sizeHint() const {
    return {kWidth, grid::kControlHeight};
}

void ColorWell::choose() {
    if (panel_) {
        panel_->raise();
        panel_->activateWindow();
        return;
    }
    panel_ = new QColorDialog(color_, this);
    panel_->setObjectName(QStringLiteral("colorPanel"));
    panel_->setWindowTitle(accessibleName());
    panel_->setAttribute(Qt::WA_DeleteOnClose);
    connect(panel_, &QColorDialog::colorSelected, this, [this](const QColor& chosen) { setColor(chosen); });
    panel_->open();
}

void ColorWell::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    const QRectF area(rect());
    stylepaint::roundedBox(painter, area, colors.control, colors.border, grid::kControlRadius);
    if (isDown() || underMouse()) {
        stylepaint::roundedBox(painter, area, isDown() ? colors.pressed : colors.hover, Qt::transparent,
                               grid::kControlRadius);
    }
    stylepaint::roundedBox(painter, area.adjusted(kInset, kInset, -kInset, -kInset), color_, colors.border,
                           grid::kControlRadius - kInset);
    if (hasFocus()) {
        stylepaint::focusRing(painter, area, colors.accent, grid::kControlRadius);
    }
}

} // namespace fernwick
