// The two tabs of the window of proxies and rules, each with the number of its records.
// Threads: main thread only.
#pragma once

#include "routing/ProxyRuleStore.h"
#include "screens/theme/Theme.h"
#include "support/Signal.h"

#include <QTabBar>

#include <functional>
#include <vector>

namespace fernwick {

enum class ProxyRuleTab { proxies, rules };

// How one tab looks: the part of the bar that is drawn as a button.
struct ProxyRuleTabButton {
    Icon icon = Icon::network;
    QString label;
    std::size_t badge = 0;
    bool isSelected = false;
    bool isHovered = false;
    bool hasFocus = false;

    [[nodiscard]] QSize size(const Theme& theme) const;
    void paint(QPainter& painter, const QRect& area, const Theme& theme) const;
};

class ProxyRuleTabBar final : public QTabBar {
public:
    // `selected` is called with the tab that the user turns to. The store outlives the bar.
    ProxyRuleTabBar(const Theme& theme, ProxyRuleStore& store, std::function<void(ProxyRuleTab)> selected,
                    QWidget* parent);

    [[nodiscard]] ProxyRuleTab selectedTab() const;
    void select(ProxyRuleTab tab);

    [[nodiscard]] std::size_t badge(ProxyRuleTab tab) const;

protected:
    [[nodiscard]] QSize tabSizeHint(int index) const override;
    [[nodiscard]] QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] ProxyRuleTabButton button(int index) const;
    void countAgain();

    const Theme& theme_;
    ProxyRuleStore& store_;
    std::vector<support::Subscription> subscriptions_;
};

} // namespace fernwick
