#include "platform/ServiceDescription.h"

#include "support/Text.h"

namespace fernwick::platform {

std::expected<std::string, ServiceState> readServiceDescription(FileSystem& files, const std::string& path) {
    if (!files.exists(path)) {
        return std::unexpected(ServiceState::notInstalled);
    }
    auto text = files.read(path);
    if (!text) {
        return std::unexpected(files.isReadable(path) ? ServiceState::corrupt : ServiceState::unreadable);
    }
    if (text->empty() || !support::isValidUtf8(*text)) {
        return std::unexpected(ServiceState::corrupt);
    }
    return *std::move(text);
}

} // namespace fernwick::platform
