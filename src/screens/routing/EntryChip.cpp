#include "screens/routing/EntryChip.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QKeyEvent>
#include <QPainter>
#include <QToolButton>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kHeight = 24;
constexpr int kPadding = 8;
constexpr int kIconSize = 14;
constexpr int kDeleteSize = 18;
constexpr int kDeleteIconSize = 14;
constexpr int kDeleteMargin = 3;
constexpr int kLongest = 360; // of the text
constexpr double kGroundOpacity = 0.1;
constexpr double kBorderOpacity = 0.3;

constexpr int kTextLeft = kPadding + kIconSize + grid::kTight;
constexpr int kTextRight = kDeleteMargin + kDeleteSize + 2;

} // namespace

EntryChip::Look EntryChip::lookOf(AppEntryType type) {
    switch (type) {
    case AppEntryType::ip:
        return {Icon::network, &Palette::green};
    case AppEntryType::ipRange:
    case AppEntryType::cidr:
        return {Icon::splitRectangle, &Palette::orange};
    case AppEntryType::app:
        break;
    }
    return {Icon::appBadge, &Palette::blue};
}

EntryChip::EntryChip(const Theme& theme, AppEntry entry, std::function<void()> onDelete, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      entry_(std::move(entry)),
      onDelete_(std::move(onDelete)),
      text_(displayLine(entry_.displayName)),
      delete_(makeIconButton(theme, Icon::clear, QStringLiteral("Remove %1").arg(text_),
                             QStringLiteral("removeEntryButton"), this)) {
    setObjectName(QStringLiteral("entryChip"));
    setFont(theme.font(11, QFont::Medium));
    setAccessibleName(text_);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setTextToolTip(*delete_, delete_->accessibleName()); // the name may look like rich text
    delete_->setIcon(themedIcon(theme, Icon::clear, lookOf(entry_.type).color));
    delete_->setIconSize(QSize(kDeleteIconSize, kDeleteIconSize));
    delete_->setFixedSize(kDeleteSize, kDeleteSize);
    connect(delete_, &QToolButton::clicked, this, [this] { onDelete_(); });
    if (fontMetrics().horizontalAdvance(text_) > kLongest) {
        setTextToolTip(*this, text_);
    }
}

void EntryChip::focusButton() {
    delete_->setFocus(Qt::TabFocusReason);
}

QSize EntryChip::sizeHint() const {
    const int width = std::min(fontMetrics().horizontalAdvance(text_) + 1, kLongest);
    return {kTextLeft + width + kTextRight, std::max(fontMetrics().height() + grid::kSmall, kHeight)};
}

void EntryChip::keyPressEvent(QKeyEvent* event) {
    const bool wantsDelete = event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace;
    if (wantsDelete && delete_->hasFocus()) {
        delete_->click();
        return;
    }
    QWidget::keyPressEvent(event);
}

void EntryChip::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const QRect place(width() - kDeleteMargin - kDeleteSize, (height() - kDeleteSize) / 2, kDeleteSize,
                      kDeleteSize);
    delete_->move(QStyle::visualRect(layoutDirection(), rect(), place).topLeft());
}

void EntryChip::paintEvent(QPaintEvent* /*event*/) {
    const Look look = lookOf(entry_.type);
    const QColor color = theme_.colors().*look.color;
    QPainter painter(this);
    stylepaint::roundedBox(painter, QRectF(rect()), withOpacity(color, kGroundOpacity),
                           withOpacity(color, kBorderOpacity), height() / 2.0);
    const auto place = [this](const QRect& where) {
        return QStyle::visualRect(layoutDirection(), rect(), where);
    };
    theme_.icons().paint(painter, look.icon, color, place(QRect(kPadding, 0, kIconSize, height())), kIconSize);
    painter.setPen(color);
    drawLine(painter, place(QRect(kTextLeft, 0, width() - kTextLeft - kTextRight, height())), text_);
}

} // namespace fernwick
