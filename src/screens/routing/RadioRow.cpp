#include "screens/routing/RadioRow.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>
#include <QStyleOptionButton>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kHeight = 28;
constexpr int kMarkSize = 16;
constexpr int kPadding = 2;

} // namespace

RadioRow::RadioRow(const Theme& theme, const QString& label, QWidget* parent)
    : QRadioButton(label, parent), theme_(theme) {
    setFont(theme.font(13));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QRadioButton::toggled, this, [this] { takeTabKey(); });
}

void RadioRow::showEvent(QShowEvent* event) {
    QRadioButton::showEvent(event);
    takeTabKey(); // the others are there by now
}

// Tab leads to the chosen one and the arrow keys on to the others; the toolkit would lead to the first one.
void RadioRow::takeTabKey() {
    if (!isChecked() || parentWidget() == nullptr) {
        return;
    }
    for (auto* each : parentWidget()->findChildren<RadioRow*>(Qt::FindDirectChildrenOnly)) {
        each->setFocusPolicy(each == this ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

QSize RadioRow::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {2 * kPadding + kMarkSize + grid::kSmall + metrics.horizontalAdvance(text()),
            std::max(metrics.height() + grid::kSmall, kHeight)};
}

void RadioRow::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QStyleOptionButton option;
    initStyleOption(&option);
    QPainter painter(this);
    const QRectF area(rect());
    const QColor shade = isDown() ? colors.pressed : (underMouse() ? colors.hover : QColor(Qt::transparent));
    stylepaint::roundedBox(painter, area, shade, Qt::transparent, grid::kControlRadius);
    if (option.state.testFlag(QStyle::State_HasFocus) &&
        option.state.testFlag(QStyle::State_KeyboardFocusChange)) {
        stylepaint::focusRing(painter, area, colors.accent, grid::kControlRadius);
    }
    const auto place = [this](const QRect& where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    const QRect mark(kPadding, (height() - kMarkSize) / 2, kMarkSize, kMarkSize);
    option.rect = place(mark);
    stylepaint::radioButton(painter, option, colors);
    const QRect label(mark.right() + 1 + grid::kSmall, 0, width(), height());
    painter.setPen(colors.text);
    painter.drawText(place(label), Qt::AlignVCenter | Qt::TextSingleLine, text());
}

} // namespace fernwick
