// The tunnel's status in words and colour, its ports, and the button that starts or stops it.
// Threads: main thread only.
#pragma once

#include "catalogue/TunnelStore.h"
#include "screens/theme/Parts.h"
#include "tunnel/TunnelManager.h"

#include <QWidget>

namespace fernwick {

class ConnectButton;
class InfoPill;
class StatusMark;

class TunnelStatusBar final : public QWidget {
public:
    TunnelStatusBar(const Theme& theme, TunnelManager& manager, TunnelStore& store, QWidget* parent);

    void setTunnel(const Tunnel& tunnel);

    // Looks the status up anew.
    void refreshStatus();

protected:
    void changeEvent(QEvent* event) override;

private:
    void toggle();

    const Theme& theme_;
    TunnelManager& manager_;
    TunnelStore& store_;
    Tunnel tunnel_;
    StatusMark* mark_;
    ElidedLabel* status_;
    InfoPill* localPort_;
    InfoPill* remotePort_;
    ConnectButton* button_;
};

} // namespace fernwick
