#include "screens/theme/IconLine.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"

#include <QPainter>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kIconSize = 16;
constexpr int kGap = grid::kTight + 2;

} // namespace

IconLine::IconLine(const Theme& theme, const QFont& font, QWidget* parent) : QLabel(parent), theme_(theme) {
    setTextFormat(Qt::PlainText);
    setFont(font);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void IconLine::showLine(const Look& look, const QString& text) {
    look_ = look;
    setText(text);
    update();
}

QSize IconLine::sizeHint() const {
    return {kIconSize + kGap + fontMetrics().horizontalAdvance(text()) + 1,
            std::max(fontMetrics().height(), kIconSize)};
}

QSize IconLine::minimumSizeHint() const {
    return {2 * kIconSize + kGap, sizeHint().height()};
}

void IconLine::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    const auto place = [this](const QRect& where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    theme_.icons().paint(painter, look_.icon, colors.*look_.iconColor, place(QRect(0, 0, kIconSize, height())),
                         kIconSize);
    painter.setPen(colors.*look_.textColor);
    const int left = kIconSize + kGap;
    const int room = width() - left;
    const int used = std::min(fontMetrics().horizontalAdvance(text()) + 1, room);
    drawLine(painter, place(QRect(left, 0, used, height())), text());
}

} // namespace fernwick
