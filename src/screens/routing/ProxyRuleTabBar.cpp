#include "screens/routing/ProxyRuleTabBar.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr int kHeight = 32;
constexpr int kIconSize = 16;
constexpr int kPadding = 12;
constexpr int kGap = 6;
constexpr int kBadgePadding = 6;
constexpr int kBetween = 4; // two tabs, as part of the first
constexpr double kChosenOpacity = 0.14;
constexpr double kBadgeOpacity = 0.18;

QFont labelFont(const Theme& theme) {
    return theme.font(13, QFont::Medium);
}

QFont badgeFont(const Theme& theme) {
    return theme.font(11, QFont::DemiBold);
}

ProxyRuleTab tabOf(int index) {
    return index == 0 ? ProxyRuleTab::proxies : ProxyRuleTab::rules;
}

QSize badgeSize(const Theme& theme, std::size_t badge) {
    const QFontMetrics metrics(badgeFont(theme));
    const int height = metrics.height() + 2;
    return {std::max(metrics.horizontalAdvance(QString::number(badge)) + 2 * kBadgePadding, height), height};
}

} // namespace

QSize ProxyRuleTabButton::size(const Theme& theme) const {
    const QFontMetrics metrics(labelFont(theme));
    const int width =
        kIconSize + kGap + metrics.horizontalAdvance(label) + 1 + kGap + badgeSize(theme, badge).width();
    return {width + 2 * kPadding, std::max(metrics.height() + grid::kSmall, kHeight)};
}

void ProxyRuleTabButton::paint(QPainter& painter, const QRect& area, const Theme& theme) const {
    const Palette& colors = theme.colors();
    const QColor shade = isHovered ? colors.hover : QColor(Qt::transparent);
    stylepaint::roundedBox(painter, QRectF(area),
                           isSelected ? withOpacity(colors.accent, kChosenOpacity) : shade, Qt::transparent,
                           grid::kControlRadius);
    if (hasFocus) {
        stylepaint::focusRing(painter, QRectF(area), colors.accent, grid::kControlRadius);
    }
    const QColor& ink = isSelected ? colors.accent : colors.secondary;
    const QRect icon(area.left() + kPadding, area.top(), kIconSize, area.height());
    theme.icons().paint(painter, this->icon, ink, QRectF(icon), kIconSize);
    const QFont font = labelFont(theme);
    const int width = QFontMetrics(font).horizontalAdvance(label) + 1;
    const QRect text(icon.right() + 1 + kGap, area.top(), width, area.height());
    painter.setFont(font);
    painter.setPen(isSelected ? colors.accent : colors.text);
    painter.drawText(text, Qt::AlignCenter | Qt::TextSingleLine, label);
    const QSize size = badgeSize(theme, badge);
    const QRect ground(QPoint(text.right() + 1 + kGap, area.top() + (area.height() - size.height()) / 2), size);
    stylepaint::roundedBox(painter, QRectF(ground),
                           withOpacity(isSelected ? colors.accent : colors.gray, kBadgeOpacity),
                           Qt::transparent, size.height() / 2.0);
    painter.setFont(badgeFont(theme));
    painter.setPen(ink);
    painter.drawText(ground, Qt::AlignCenter, QString::number(badge));
}

ProxyRuleTabBar::ProxyRuleTabBar(const Theme& theme, ProxyRuleStore& store,
                                 std::function<void(ProxyRuleTab)> selected, QWidget* parent)
    : QTabBar(parent), theme_(theme), store_(store) {
    setObjectName(QStringLiteral("proxyRuleTabs"));
    setAccessibleName(QStringLiteral("Proxies & Rules"));
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover);
    addTab(QStringLiteral("Proxies"));
    addTab(QStringLiteral("Rules"));
    countAgain();
    connect(this, &QTabBar::currentChanged, this,
            [selected = std::move(selected)](int index) { selected(tabOf(index)); });
    subscriptions_.push_back(store.proxiesChanged.connect([this] { countAgain(); }));
    subscriptions_.push_back(store.rulesChanged.connect([this] { countAgain(); }));
}

ProxyRuleTab ProxyRuleTabBar::selectedTab() const {
    return tabOf(currentIndex());
}

void ProxyRuleTabBar::select(ProxyRuleTab tab) {
    setCurrentIndex(std::to_underlying(tab));
}

std::size_t ProxyRuleTabBar::badge(ProxyRuleTab tab) const {
    return tab == ProxyRuleTab::proxies ? store_.proxies().size() : store_.rules().size();
}

// The number is part of what a tab is called aloud; setting the name also makes the bar lay out its tabs anew.
void ProxyRuleTabBar::countAgain() {
    for (int index = 0; index < count(); ++index) {
        setAccessibleTabName(index, QStringLiteral("%1, %2").arg(tabText(index)).arg(badge(tabOf(index))));
        setTabText(index, tabText(index));
    }
    updateGeometry();
    update();
}

ProxyRuleTabButton ProxyRuleTabBar::button(int index) const {
    const auto tab = tabOf(index);
    const QPoint pointer = mapFromGlobal(QCursor::pos());
    return {.icon = tab == ProxyRuleTab::proxies ? Icon::network : Icon::list,
            .label = tabText(index),
            .badge = badge(tab),
            .isSelected = index == currentIndex(),
            .isHovered = underMouse() && tabRect(index).contains(pointer),
            .hasFocus = hasFocus() && index == currentIndex()};
}

QSize ProxyRuleTabBar::tabSizeHint(int index) const {
    return button(index).size(theme_) + QSize(kBetween, 0);
}

void ProxyRuleTabBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    for (int index = 0; index < count(); ++index) {
        button(index).paint(painter, tabRect(index).adjusted(0, 0, -kBetween, 0), theme_);
    }
}

} // namespace fernwick
