// The tunnel's status in words and colour, when it was last connected, its ports, and the button that starts or
// stops it. Threads: main thread only.
#pragma once

#include "catalogue/TunnelStore.h"
#include "screens/theme/Parts.h"
#include "support/RelativeDate.h"
#include "tunnel/TunnelManager.h"

#include <QWidget>

namespace fernwick {

class ConnectButton;
class InfoPill;
class StatusMark;

class TunnelStatusBar final : public QWidget {
public:
    TunnelStatusBar(const Theme& theme, TunnelManager& manager, TunnelStore& store,
                    const platform::Clock& clock, QWidget* parent);

    void setTunnel(const Tunnel& tunnel);

    // Looks the status up anew, and tells anew how long ago the tunnel was last connected. No timer does that:
    // an idle window takes no time of the processor.
    void refreshStatus();

protected:
    void changeEvent(QEvent* event) override;
    // Whoever comes to look at it sees the time as it is.
    bool event(QEvent* event) override;

private:
    void toggle();
    void refreshLastConnected();

    const Theme& theme_;
    TunnelManager& manager_;
    TunnelStore& store_;
    const platform::Clock& clock_;
    support::RelativeDateFormatter relative_;
    Tunnel tunnel_;
    StatusMark* mark_;
    ElidedLabel* status_;
    ElidedLabel* last_;
    InfoPill* localPort_;
    InfoPill* remotePort_;
    ConnectButton* button_;
};

} // namespace fernwick
