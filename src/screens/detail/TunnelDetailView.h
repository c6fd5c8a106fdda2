// The chosen tunnel: its status and its log.
// Threads: main thread only.
#pragma once

#include "screens/main/MainWindowContext.h"

#include <QWidget>

namespace fernwick {

class LogsTabView;
class TunnelStatusBar;

class TunnelDetailView final : public QWidget {
public:
    TunnelDetailView(const MainWindowContext& context, QWidget* parent);

    void setTunnel(const Tunnel& tunnel);

    // Looks the status up anew.
    void refreshStatus();

private:
    TunnelStatusBar* statusBar_;
    LogsTabView* logs_;
};

} // namespace fernwick
