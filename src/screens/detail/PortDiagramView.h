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

protected:
    void changeEvent(QEvent* event) override;

private:
    // An icon over its text.
    QWidget* makeNode(Icon icon, NamedColor color, QLabel* text);

    void tint();

    const Theme& theme_;
    ElidedLabel* local_;
    QLabel* ssh_;
    ElidedLabel* remote_;
};

} // namespace fernwick
