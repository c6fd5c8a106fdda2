// What routing is made from, as it was at one moment.
#pragma once

#include "routing/AppRule.h"
#include "routing/ProxyConfig.h"

#include <vector>

namespace fernwick {

// Shared by all that is planned until the next change of a proxy or rule, since there may be ten thousand.
struct RoutedRules {
    std::vector<AppRule> enabled;
    std::vector<ProxyConfig> proxies;
};

} // namespace fernwick
