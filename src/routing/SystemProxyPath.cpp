#include "routing/SystemProxyPath.h"

#include "routing/PACBuilder.h"

#include <utility>

namespace fernwick {

namespace {

// From the start to the look at what a killed run left in the settings. Each desktop is asked by programs of
// its own, and the first window is to have the processors for itself.
constexpr platform::Duration kSettling{500};

} // namespace

SystemProxyPath::SystemProxyPath(platform::NetworkProxySettings& settings, const platform::Clock& clock,
                                 std::uint16_t pacPort, support::PrintLine print)
    : server_(pacPort),
      manager_(settings, clock, [this](const std::string& text) { server_.update(text); }, std::move(print)) {}

template <class Work>
void SystemProxyPath::takeTurn(Request request, Work work) {
    const std::lock_guard lock(turn_);
    if (request < done_) {
        return;
    }
    done_ = request;
    work();
}

void SystemProxyPath::start(platform::Dispatch& dispatch) {
    server_.start();
    dispatch.globalAfter(
        platform::Priority::background, kSettling, [path = shared_from_this(), request = ++newest_] {
            path->takeTurn(request, [&] { path->manager_.clearStale(path->server_.pacURL()); });
        });
}

void SystemProxyPath::apply(platform::Dispatch& dispatch, std::shared_ptr<const RoutedRules> rules,
                            TunnelPortMap ports) {
    {
        const std::lock_guard lock(wishing_);
        const bool isAsked = wish_.has_value();
        wish_ = {.request = ++newest_, .rules = std::move(rules), .ports = std::move(ports)};
        if (isAsked) {
            return;
        }
    }
    dispatch.global(platform::Priority::background, [path = shared_from_this()] { path->applyWish(); });
}

void SystemProxyPath::applyWish() {
    std::unique_lock wishing(wishing_);
    const auto wish = std::exchange(wish_, std::nullopt);
    wishing.unlock();
    const auto isNewest = [&] { return wish->request == newest_; };
    if (!isNewest()) {
        return; // without waiting for its turn, which would hold a thread of the pool
    }
    takeTurn(wish->request, [&] {
        if (isNewest()) {
            manager_.apply(buildPAC(wish->rules->enabled, wish->rules->proxies, wish->ports), wish->ports,
                           server_.pacURL());
        }
    });
}

void SystemProxyPath::removeAllProxy(std::string_view reason, bool wait) {
    takeTurn(++newest_, [&] { manager_.removeAllProxy(reason, wait); });
}

} // namespace fernwick
