#include "routing/ProxyConfig.h"

namespace fernwick {

ProxyConfig ProxyConfig::create() {
    ProxyConfig proxy;
    proxy.id = support::Uuid::random();
    return proxy;
}

std::string ProxyConfig::effectiveName() const {
    return name.empty() ? address + ":" + std::to_string(port) : name;
}

} // namespace fernwick
