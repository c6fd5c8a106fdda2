// What networksetup and gsettings print. A service has a name that could be given back to the command, and a
// text that was read is read again when it is printed anew.
#include "platform/linux/GnomeProxy.h"
#include "platform/macos/NetworkSetup.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace fernwick::platform;

namespace {

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string output(data, data + size);
    for (const auto& service : parseNetworkServices(output)) {
        require(!service.empty() && !service.contains('\n') && !service.starts_with('*'));
        require(parseNetworkServices(" " + service + "\t") == std::vector<std::string>{service});
    }
    const auto url = parseAutoProxyURL(output);
    require(url.empty() || parseAutoProxyURL("URL: " + url + "\nEnabled: Yes\n") == url);
    const auto text = unquotedVariant(output);
    require(!text || unquotedVariant(quotedVariant(*text)) == text);
    require(unquotedVariant(quotedVariant(output)) == output);
    return 0;
}
