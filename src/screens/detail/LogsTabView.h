// A tunnel's log: how many lines, whether the list follows them, a way to empty it, and the lines.
// Threads: main thread only. A burst of lines is shown in one go, and none while the tab cannot be seen.
#pragma once

#include "screens/Coalescer.h"
#include "screens/theme/Parts.h"
#include "support/Signal.h"
#include "tunnel/TunnelManager.h"

#include <QWidget>

class QCheckBox;
class QStackedWidget;

namespace fernwick {

class LogListModel;
class LogListView;

class LogsTabView final : public QWidget {
public:
    LogsTabView(const Theme& theme, TunnelManager& manager, platform::Dispatch& dispatch, QWidget* parent);

    // Shows the log of that tunnel.
    void setTunnel(const support::Uuid& tunnelID);

    // Turns on that the list follows new lines, as it does whenever the tab is opened anew.
    void followLines();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* buildHeader();
    QWidget* buildEmptyState();
    void refresh();

    const Theme& theme_;
    TunnelManager& manager_;
    support::Uuid tunnelID_;
    LogListModel* model_;
    LogListView* list_;
    QLabel* count_ = nullptr;
    QCheckBox* autoScroll_ = nullptr;
    QStackedWidget* pages_;
    Coalescer refreshSoon_;
    support::Subscription logChanged_;
};

} // namespace fernwick
