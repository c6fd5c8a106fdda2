// The way of the bytes as a picture: this machine, ssh, and where they go. It is the same for every kind of
// tunnel. Threads: main thread only.
#pragma once

#include "catalogue/Tunnel.h"
#include "screens/theme/Parts.h"

namespace fernwick {

class PortDiagramView final : public QWidget {
public:
    PortDiagramView(const Theme& theme, QWidget* parent);

    void showTunnel(const Tunnel& tunnel);

private:
    // An icon over its text.
    QWidget* makeNode(const Theme& theme, Icon icon, NamedColor color, QLabel* text);

    ElidedLabel* local_;
    ElidedLabel* remote_;
};

} // namespace fernwick
