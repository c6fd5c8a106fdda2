#include "screens/detail/LogRowDelegate.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace fernwick {

namespace {

constexpr int kTimeWidth = 55;
constexpr int kIconSize = 14;
constexpr int kGap = 6;
constexpr int kSidePadding = 6;
constexpr int kRowPadding = 3;
constexpr int kNarrowest = 80;
constexpr int kMostHeights = 2000; // four full logs
constexpr double kRowRadius = 4.0;

} // namespace

LogLevelLook lookOf(LogLevel level) {
    switch (level) {
    case LogLevel::success:
        return {Icon::checkCircle, &Palette::green, &Palette::green};
    case LogLevel::warning:
        return {Icon::warning, &Palette::orange, &Palette::text};
    case LogLevel::error:
        return {Icon::crossCircle, &Palette::red, &Palette::red};
    case LogLevel::info:
        break;
    }
    return {Icon::infoCircle, &Palette::secondary, &Palette::text};
}

LogRowDelegate::LogRowDelegate(const Theme& theme, const LogListModel& model, QObject* parent)
    : QStyledItemDelegate(parent),
      theme_(theme),
      model_(model),
      font_(theme.monospaced(11)),
      metrics_(font_),
      timeWidth_(std::max(kTimeWidth, metrics_.horizontalAdvance(QStringLiteral("00:00:00")))) {}

bool LogRowDelegate::setRowWidth(int width) {
    if (width == rowWidth_) {
        return false;
    }
    rowWidth_ = width;
    heights_.clear();
    return true;
}

int LogRowDelegate::messageLeft() const {
    return kSidePadding + timeWidth_ + kGap + kIconSize + kGap;
}

int LogRowDelegate::layOut(QTextLayout& layout) const {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.setFont(font_);
    const int width = std::max(rowWidth_ - messageLeft() - kSidePadding, kNarrowest);
    double height = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, height));
        height += line.height();
    }
    layout.endLayout();
    return std::max(static_cast<int>(std::ceil(height)), metrics_.height());
}

QSize LogRowDelegate::sizeHint(const QStyleOptionViewItem& /*option*/, const QModelIndex& index) const {
    const QString& message = model_.line(index.row()).message;
    auto found = heights_.find(message);
    if (found == heights_.end()) {
        if (heights_.size() >= kMostHeights) {
            heights_.clear();
        }
        QTextLayout layout(message);
        found = heights_.insert(message, layOut(layout));
    }
    return {1, *found + 2 * kRowPadding};
}

void LogRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    const Palette& colors = theme_.colors();
    const LogLine& line = model_.line(index.row());
    const LogLevelLook look = lookOf(line.level);
    painter->save();
    painter->setClipRect(option.rect);
    if (option.state.testFlag(QStyle::State_Selected)) {
        stylepaint::roundedBox(*painter, QRectF(option.rect), colors.selection, Qt::transparent, kRowRadius);
    }
    const int top = option.rect.top() + kRowPadding;
    const int left = option.rect.left();
    painter->setFont(font_);
    painter->setPen(colors.secondary);
    painter->drawText(QRect(left + kSidePadding, top, timeWidth_, metrics_.height()),
                      Qt::AlignLeft | Qt::AlignVCenter, line.time);
    theme_.icons().paint(*painter, look.icon, colors.*look.iconColor,
                         QRectF(left + kSidePadding + timeWidth_ + kGap, top, kIconSize, metrics_.height()),
                         kIconSize);
    QTextLayout layout(line.message);
    layOut(layout);
    painter->setPen(colors.*look.messageColor);
    layout.draw(painter, QPointF(left + messageLeft(), top));
    painter->restore();
}

} // namespace fernwick
