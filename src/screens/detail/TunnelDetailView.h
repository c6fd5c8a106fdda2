// The chosen tunnel: its status, and three tabs to edit it and to read its log. A tab is made when it is first
// turned to, and only the one on the screen keeps up with changes. Threads: main thread only.
#pragma once

#include "screens/Coalescer.h"
#include "screens/detail/TunnelBinding.h"
#include "screens/main/MainWindowContext.h"

#include <QWidget>

#include <array>

class QStackedWidget;

namespace fernwick {

class AdvancedTabView;
class ConfigTabView;
class LogsTabView;
class TabButton;
class TunnelStatusBar;

class TunnelDetailView final : public QWidget {
public:
    static constexpr int kConfiguration = 0;
    static constexpr int kAdvanced = 1;
    static constexpr int kLogs = 2;

    TunnelDetailView(const MainWindowContext& context, QWidget* parent);

    // Shows a tunnel: another one, on the tab that is open, or the same in its present state.
    void setTunnel(const Tunnel& tunnel);

    // Looks the status up anew.
    void refreshStatus();

    [[nodiscard]] int selectedTab() const { return selectedTab_; }

private:
    QWidget* buildTabBar();
    void select(int tab);
    void refresh();
    // Brings the page of the open tab up to date, making it if need be; returns it.
    QWidget* refreshPage();
    void refreshBadge();

    MainWindowContext context_;
    TunnelBinding binding_;
    int selectedTab_ = kConfiguration;
    TunnelStatusBar* statusBar_;
    std::array<TabButton*, 3> tabs_{};
    QStackedWidget* pages_;
    ConfigTabView* config_ = nullptr;
    AdvancedTabView* advanced_ = nullptr;
    LogsTabView* logs_ = nullptr;
    Coalescer refreshBadgeSoon_;
    support::Subscription bindingChanged_;
    support::Subscription logChanged_;
};

} // namespace fernwick
