#include "portability/ICloudStatus.h"

namespace fernwick {

std::string ICloudStatus::label() const {
    switch (kind) {
    case checking:
        return "Checking...";
    case available:
        return "Available";
    case unavailable:
        return "Not signed in to iCloud";
    case syncing:
        return "Syncing...";
    case synced:
        return "Synced";
    case error:
        break;
    }
    return "Error: " + message;
}

} // namespace fernwick
