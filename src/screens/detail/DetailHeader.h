// The bar above the detail column: the button that shows or hides the sidebar, and who the tunnel is.
// Threads: main thread only.
#pragma once

#include "catalogue/Tunnel.h"
#include "screens/theme/Parts.h"

#include <functional>

namespace fernwick {

class DetailHeader final : public QWidget {
public:
    DetailHeader(const Theme& theme, std::function<void()> onToggleSidebar, QWidget* parent);

    // Shows name and login of the tunnel; null clears the bar.
    void setTunnel(const Tunnel* tunnel);

private:
    ElidedLabel* name_;
    ElidedLabel* login_;
};

} // namespace fernwick
