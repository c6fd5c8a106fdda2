#include "screens/theme/StylePaint.h"

#include "screens/theme/Grid.h"
#include "screens/theme/Theme.h"

#include <QPainter>
#include <QStyleOption>

namespace fernwick::stylepaint {

namespace {

constexpr double kHairline = 1.0;
constexpr double kFocusWidth = 2.0;
constexpr double kDisabledOpacity = 0.45;
constexpr double kIndicatorRadius = 4.0;
constexpr int kCheckSize = 14;
constexpr int kLabelPadding = 10;
constexpr double kGrooveHeight = 4.0;
constexpr int kKnobEdgeAlpha = 56; // the shadow's line around a knob, in both appearances

bool has(const QStyleOption& option, QStyle::StateFlag flag) {
    return option.state.testFlag(flag);
}

bool showsFocus(const QStyleOption& option) {
    return has(option, QStyle::State_HasFocus) && has(option, QStyle::State_KeyboardFocusChange);
}

bool isFilled(ButtonRole role) {
    return role == ButtonRole::prominent || role == ButtonRole::destructive;
}

// What lies over a ground while the pointer is on it or holds it down.
QColor shade(const QStyleOption& option, const Palette& colors) {
    if (!has(option, QStyle::State_Enabled)) {
        return Qt::transparent;
    }
    if (has(option, QStyle::State_Sunken)) {
        return colors.pressed;
    }
    return has(option, QStyle::State_MouseOver) ? colors.hover : QColor(Qt::transparent);
}

QColor filledGround(ButtonRole role, const Palette& colors) {
    return role == ButtonRole::destructive ? colors.red : colors.accent;
}

} // namespace

void roundedBox(QPainter& painter, const QRectF& area, const QColor& fill, const QColor& border,
                double radius) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(border.alpha() > 0 ? QPen(border, kHairline) : QPen(Qt::NoPen));
    const double inset = border.alpha() > 0 ? kHairline / 2 : 0.0;
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.restore();
}

void focusRing(QPainter& painter, const QRectF& area, const QColor& color, double radius) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, kFocusWidth));
    const double inset = kFocusWidth / 2;
    painter.drawRoundedRect(area.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
    painter.restore();
}

void buttonGround(QPainter& painter, const QStyleOption& option, ButtonRole role, const Palette& colors) {
    painter.save();
    const QRectF area(option.rect);
    const bool enabled = has(option, QStyle::State_Enabled);
    painter.setOpacity(enabled ? 1.0 : kDisabledOpacity);
    if (isFilled(role)) {
        roundedBox(painter, area, filledGround(role, colors), Qt::transparent, grid::kControlRadius);
    } else if (role == ButtonRole::plain) {
        roundedBox(painter, area, colors.control, colors.border, grid::kControlRadius);
    }
    roundedBox(painter, area, shade(option, colors), Qt::transparent, grid::kControlRadius);
    if (showsFocus(option)) {
        const bool filled = isFilled(role);
        const double gap = filled ? 2.0 : 0.0;
        focusRing(painter, area.adjusted(gap, gap, -gap, -gap), filled ? colors.onAccent : colors.accent,
                  grid::kControlRadius - gap);
    }
    painter.restore();
}

void buttonLabel(QPainter& painter, const QStyleOptionButton& option, ButtonRole role, const Palette& colors) {
    painter.save();
    const bool enabled = has(option, QStyle::State_Enabled);
    QColor color = isFilled(role) ? colors.onAccent : colors.text;
    if (!enabled) {
        color = withOpacity(color, isFilled(role) ? 0.8 : kDisabledOpacity);
    }
    constexpr int flags = Qt::AlignCenter | Qt::TextHideMnemonic;
    QRect area = option.rect.adjusted(grid::kSmall, 0, -grid::kSmall, 0);
    if (!option.icon.isNull()) {
        const int side = option.iconSize.width();
        const int gap = option.text.isEmpty() ? 0 : grid::kTight + 2;
        const int width = side + gap + option.fontMetrics.size(Qt::TextShowMnemonic, option.text).width();
        const int left = area.center().x() - width / 2;
        option.icon.paint(&painter, QRect(left, area.center().y() - side / 2 + 1, side, side), Qt::AlignCenter,
                          enabled ? QIcon::Normal : QIcon::Disabled);
        area.setLeft(left + side + gap);
        area.setRight(left + width + 1);
    }
    painter.setPen(color);
    painter.drawText(area, flags, option.text);
    painter.restore();
}

void toolButtonGround(QPainter& painter, const QStyleOption& option, const Palette& colors) {
    const QRectF area(option.rect);
    if (has(option, QStyle::State_On)) {
        roundedBox(painter, area, colors.pressed, Qt::transparent, grid::kControlRadius);
    }
    roundedBox(painter, area, shade(option, colors), Qt::transparent, grid::kControlRadius);
    if (showsFocus(option)) {
        focusRing(painter, area, colors.accent, grid::kControlRadius);
    }
}

void textField(QPainter& painter, const QStyleOption& option, const Palette& colors) {
    const QRectF area(option.rect);
    painter.save();
    painter.setOpacity(has(option, QStyle::State_Enabled) ? 1.0 : kDisabledOpacity);
    roundedBox(painter, area, colors.field, colors.border, grid::kControlRadius);
    if (has(option, QStyle::State_HasFocus)) {
        focusRing(painter, area, colors.accent, grid::kControlRadius);
    }
    painter.restore();
}

void checkBox(QPainter& painter, const QStyleOption& option, const Theme& theme) {
    const Palette& colors = theme.colors();
    const QRectF area(option.rect);
    const bool on = has(option, QStyle::State_On) || has(option, QStyle::State_NoChange);
    painter.save();
    painter.setOpacity(has(option, QStyle::State_Enabled) ? 1.0 : kDisabledOpacity);
    roundedBox(painter, area, on ? colors.accent : colors.field, on ? QColor(Qt::transparent) : colors.border,
               kIndicatorRadius);
    roundedBox(painter, area, shade(option, colors), Qt::transparent, kIndicatorRadius);
    if (has(option, QStyle::State_NoChange)) {
        painter.fillRect(QRectF(area.left() + 4, area.center().y() - 1, area.width() - 8, 2), colors.onAccent);
    } else if (on) {
        theme.icons().paint(painter, Icon::check, colors.onAccent, area, kCheckSize);
    }
    painter.restore();
}

void radioButton(QPainter& painter, const QStyleOption& option, const Palette& colors) {
    const QRectF area(option.rect);
    const bool on = has(option, QStyle::State_On);
    painter.save();
    painter.setOpacity(has(option, QStyle::State_Enabled) ? 1.0 : kDisabledOpacity);
    roundedBox(painter, area, on ? colors.accent : colors.field, on ? QColor(Qt::transparent) : colors.border,
               area.height() / 2);
    if (on) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.onAccent);
        painter.drawEllipse(area.center(), area.width() / 5, area.width() / 5);
    }
    painter.restore();
}

void comboBox(QPainter& painter, const QStyleOptionComboBox& option, const Theme& theme) {
    const Palette& colors = theme.colors();
    const QRectF area(option.rect);
    painter.save();
    painter.setOpacity(has(option, QStyle::State_Enabled) ? 1.0 : kDisabledOpacity);
    roundedBox(painter, area, option.editable ? colors.field : colors.control, colors.border,
               grid::kControlRadius);
    roundedBox(painter, area, shade(option, colors), Qt::transparent, grid::kControlRadius);
    if (has(option, QStyle::State_HasFocus) && (option.editable || showsFocus(option))) {
        focusRing(painter, area, colors.accent, grid::kControlRadius);
    }
    const bool mirrored = option.direction == Qt::RightToLeft;
    const QRectF arrow(mirrored ? area.left() : area.right() - grid::kExtraLarge, area.top(), grid::kExtraLarge,
                       area.height());
    theme.icons().paint(painter, Icon::chevronDown, colors.secondary, arrow, kCheckSize);
    painter.restore();
}

void comboBoxLabel(QPainter& painter, const QStyleOptionComboBox& option, const Palette& colors) {
    painter.save();
    const bool mirrored = option.direction == Qt::RightToLeft;
    QRect area = option.rect.adjusted(kLabelPadding, 0, -grid::kExtraLarge, 0);
    if (!option.currentIcon.isNull()) {
        const int side = option.iconSize.width();
        const QRect icon(area.left(), area.center().y() - side / 2 + 1, side, side);
        option.currentIcon.paint(&painter, QStyle::visualRect(option.direction, option.rect, icon),
                                 Qt::AlignCenter,
                                 has(option, QStyle::State_Enabled) ? QIcon::Normal : QIcon::Disabled);
        area.setLeft(icon.right() + 1 + grid::kSmall);
    }
    painter.setPen(withOpacity(colors.text, has(option, QStyle::State_Enabled) ? 1.0 : kDisabledOpacity));
    const auto side = Qt::AlignVCenter | Qt::AlignAbsolute | (mirrored ? Qt::AlignRight : Qt::AlignLeft);
    painter.drawText(QStyle::visualRect(option.direction, option.rect, area), static_cast<int>(side.toInt()),
                     option.fontMetrics.elidedText(option.currentText, Qt::ElideRight, area.width()));
    painter.restore();
}

void slider(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle, const Palette& colors) {
    painter.save();
    painter.setOpacity(has(option, QStyle::State_Enabled) ? 1.0 : kDisabledOpacity);
    const QRectF area(option.rect);
    const QRectF groove(area.left() + 1, handle.center().y() - kGrooveHeight / 2, area.width() - 2,
                        kGrooveHeight);
    roundedBox(painter, groove, colors.pressed, Qt::transparent, kGrooveHeight / 2);
    QRectF filled = groove;
    if (option.upsideDown) {
        filled.setLeft(handle.center().x());
    } else {
        filled.setRight(handle.center().x());
    }
    roundedBox(painter, filled, colors.accent, Qt::transparent, kGrooveHeight / 2);
    const QRectF knob = handle.adjusted(2, 2, -2, -2);
    roundedBox(painter, knob, colors.onAccent, QColor(0, 0, 0, kKnobEdgeAlpha), knob.height() / 2);
    roundedBox(painter, knob, shade(option, colors), Qt::transparent, knob.height() / 2);
    if (showsFocus(option)) {
        focusRing(painter, handle, colors.accent, handle.height() / 2);
    }
    painter.restore();
}

void spinBox(QPainter& painter, const QStyleOptionSpinBox& option, const QRect& up, const QRect& down,
             const Theme& theme) {
    const Palette& colors = theme.colors();
    textField(painter, option, colors);
    const auto arrow = [&](const QRect& button, QStyle::SubControl part, bool enabled, double turned) {
        if (option.activeSubControls.testFlag(part)) {
            roundedBox(painter, QRectF(button.adjusted(1, 1, -1, -1)), shade(option, colors), Qt::transparent,
                       kIndicatorRadius);
        }
        painter.save();
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setOpacity(enabled ? 1.0 : kDisabledOpacity);
        painter.translate(QRectF(button).center());
        painter.rotate(turned);
        constexpr int kSize = 10;
        theme.icons().paint(painter, Icon::chevronDown, colors.secondary,
                            QRectF(-kSize / 2.0, -kSize / 2.0, kSize, kSize), kSize);
        painter.restore();
    };
    constexpr double kHalfTurn = 180.0;
    arrow(up, QStyle::SC_SpinBoxUp, option.stepEnabled.testFlag(QAbstractSpinBox::StepUpEnabled), kHalfTurn);
    arrow(down, QStyle::SC_SpinBoxDown, option.stepEnabled.testFlag(QAbstractSpinBox::StepDownEnabled), 0.0);
}

} // namespace fernwick::stylepaint
