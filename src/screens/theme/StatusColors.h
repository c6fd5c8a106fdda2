// Which colour stands for which status, the same on every screen.
#pragma once

#include "catalogue/TunnelStatus.h"
#include "screens/theme/Palette.h"

#include <optional>

namespace fernwick {

// The colour of a status; a tunnel that was never touched has none and is gray.
[[nodiscard]] inline QColor statusColor(const std::optional<TunnelStatus>& status, const Palette& colors) {
    switch (status ? status->kind() : TunnelStatus::Kind::idle) {
    case TunnelStatus::Kind::connecting:
        return colors.orange;
    case TunnelStatus::Kind::connected:
        return colors.green;
    case TunnelStatus::Kind::error:
        return colors.red;
    case TunnelStatus::Kind::idle:
    case TunnelStatus::Kind::disconnected:
        break;
    }
    return colors.gray;
}

} // namespace fernwick
