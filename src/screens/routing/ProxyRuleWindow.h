// The window of proxies and rules: two tabs, and the line that says that there is nothing to be confirmed.
// Threads: main thread only.
#pragma once

#include "screens/routing/ProxyRuleTabBar.h"
#include "screens/routing/RoutingContext.h"
#include "screens/routing/RulesListView.h"

#include <QWidget>

#include <functional>

class QStackedWidget;

namespace fernwick {

class ProxiesListView;

class ProxyRuleWindow final : public QWidget {
public:
    static constexpr int kWidth = 820;
    static constexpr int kHeight = 560;
    static constexpr int kMinimumWidth = 700;
    static constexpr int kMinimumHeight = 460;

    // The tunnels are a snapshot: the window does not follow later changes of the list.
    ProxyRuleWindow(const RoutingContext& context, TunnelNames tunnels, OpenRuleEditor openRuleEditor);

    [[nodiscard]] const TunnelNames& tunnels() const { return tunnels_; }
    [[nodiscard]] ProxyRuleTab selectedTab() const { return tabs_->selectedTab(); }
    [[nodiscard]] ProxiesListView& proxies() { return *proxies_; }
    [[nodiscard]] RulesListView& rules() { return *rules_; }

    // Called when the window is closed.
    std::function<void()> onClose;

protected:
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* buildTabRow(const RoutingContext& context);
    void turnTo(ProxyRuleTab tab);
    void addShortcuts();
    [[nodiscard]] RecordTab& current() const;

    const Theme& theme_;
    TunnelNames tunnels_;
    ProxyRuleTabBar* tabs_ = nullptr;
    QStackedWidget* pages_ = nullptr;
    ProxiesListView* proxies_ = nullptr;
    RulesListView* rules_ = nullptr;
};

} // namespace fernwick
