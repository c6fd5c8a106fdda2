#include "screens/settings/SettingsTabBar.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QCursor>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <array>
#include <utility>

namespace fernwick {

namespace {

struct Tab {
    const char* title;
    Icon icon;
};

// In the order of SettingsTab.
constexpr std::array kTabs{Tab{"General", Icon::switchControl}, Tab{"Identity", Icon::key},
                           Tab{"Known Hosts", Icon::listRectangle}, Tab{"Tags", Icon::tag},
                           Tab{"Sync", Icon::arrowsCircle}};

constexpr int kIconSize = 22;
constexpr int kAround = 6; // above the icon and below the title
constexpr int kPadding = 10;
constexpr int kNarrowest = 76;
constexpr int kBetween = 4; // two tabs, as part of the first
constexpr double kChosenOpacity = 0.14;

QFont titleFont(const Theme& theme) {
    return theme.font(11, QFont::Medium);
}

} // namespace

SettingsTabBar::SettingsTabBar(const Theme& theme, std::function<void(SettingsTab)> selected, QWidget* parent)
    : QTabBar(parent), theme_(theme) {
    setObjectName(QStringLiteral("settingsTabs"));
    setAccessibleName(QStringLiteral("Settings"));
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover);
    for (const Tab& tab : kTabs) {
        addTab(QString::fromLatin1(tab.title));
    }
    connect(this, &QTabBar::currentChanged, this,
            [selected = std::move(selected)](int index) { selected(static_cast<SettingsTab>(index)); });
}

QSize SettingsTabBar::tabSizeHint(int index) const {
    const QFontMetrics metrics(titleFont(theme_));
    const int width = metrics.horizontalAdvance(tabText(index)) + 1 + 2 * kPadding;
    return {std::max(width, kNarrowest) + kBetween, 2 * kAround + kIconSize + grid::kTight + metrics.height()};
}

void SettingsTabBar::paintTab(QPainter& painter, int index) const {
    const Palette& colors = theme_.colors();
    const bool chosen = index == currentIndex();
    const bool hovered = underMouse() && tabRect(index).contains(mapFromGlobal(QCursor::pos()));
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    const QRect area = tabRect(index).adjusted(mirrored ? kBetween : 0, 0, mirrored ? 0 : -kBetween, 0);
    const QColor shade = hovered ? colors.hover : QColor(Qt::transparent);
    stylepaint::roundedBox(painter, QRectF(area), chosen ? withOpacity(colors.accent, kChosenOpacity) : shade,
                           Qt::transparent, grid::kControlRadius);
    if (hasFocus() && chosen) {
        stylepaint::focusRing(painter, QRectF(area), colors.accent, grid::kControlRadius);
    }
    const QRect icon(area.left(), area.top() + kAround, area.width(), kIconSize);
    theme_.icons().paint(painter, kTabs.at(static_cast<std::size_t>(index)).icon,
                         chosen ? colors.accent : colors.secondary, QRectF(icon), kIconSize);
    painter.setFont(titleFont(theme_));
    painter.setPen(chosen ? colors.accent : colors.text);
    painter.drawText(area.adjusted(0, kAround + kIconSize + grid::kTight, 0, -kAround),
                     Qt::AlignCenter | Qt::TextSingleLine, tabText(index));
}

void SettingsTabBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    for (int index = 0; index < count(); ++index) {
        paintTab(painter, index);
    }
}

} // namespace fernwick
