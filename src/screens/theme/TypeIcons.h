// Which icon stands for which kind of tunnel, the same on every screen.
#pragma once

#include "catalogue/Tunnel.h"
#include "screens/theme/Icons.h"

namespace fernwick {

[[nodiscard]] inline Icon iconOf(TunnelType type) {
    switch (type) {
    case TunnelType::localForward:
        return Icon::circleRight;
    case TunnelType::remoteForward:
        return Icon::circleLeft;
    case TunnelType::socks5:
        return Icon::globe;
    case TunnelType::dynamicForward:
        break;
    }
    return Icon::network;
}

} // namespace fernwick
