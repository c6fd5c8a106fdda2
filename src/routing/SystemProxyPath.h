// The way of applications that honour the system's proxy settings: the script is served, and the settings point
// at it while a tunnel is up. Requests are numbered as they come and carried out on background queues; one that
// comes to its turn after a newer one was carried out does nothing, so that the system is left as the newest
// wants it, whatever the queues did. Threads: as each operation says.
#pragma once

#include "platform/Dispatch.h"
#include "routing/PACServer.h"
#include "routing/RoutedRules.h"
#include "routing/SystemProxyManager.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

namespace fernwick {

class SystemProxyPath : public std::enable_shared_from_this<SystemProxyPath> {
public:
    // The settings and the clock outlive the path.
    SystemProxyPath(platform::NetworkProxySettings& settings, const platform::Clock& clock,
                    std::uint16_t pacPort, support::PrintLine print);
    SystemProxyPath(const SystemProxyPath&) = delete;
    SystemProxyPath& operator=(const SystemProxyPath&) = delete;

    // Starts serving; half a second after, a setting that still points here from a run that was killed is taken
    // away, unless a request came before that. Main thread.
    void start(platform::Dispatch& dispatch);

    // Has the settings follow these ports, later, on a queue of background priority, unless a newer request has
    // come by then: fifty tunnels that come up at once cost one change or two of the settings, each of which
    // takes a second, and not fifty. Main thread.
    void apply(platform::Dispatch& dispatch, std::shared_ptr<const RoutedRules> rules, TunnelPortMap ports);

    // Takes the settings back and serves a script that sends everything direct. Background queue; blocks.
    void removeAllProxy(std::string_view reason, bool wait);

    // Stops serving. Any thread.
    void stop() { server_.stop(); }

    [[nodiscard]] const PACServer& server() const { return server_; }

private:
    using Request = std::uint64_t;

    // What the newest call of `apply` asked for.
    struct Wish {
        Request request = 0;
        std::shared_ptr<const RoutedRules> rules;
        TunnelPortMap ports;
    };

    // Carries out what is wished for by now. Background queue; blocks.
    void applyWish();

    // Runs the work unless a newer request was carried out already. One at a time.
    template <class Work>
    void takeTurn(Request request, Work work);

    PACServer server_;
    SystemProxyManager manager_;
    std::atomic<Request> newest_ = 0;
    std::mutex turn_; // guards what follows, and is held while a request is carried out
    Request done_ = 0;
    std::mutex wishing_;       // guards what follows
    std::optional<Wish> wish_; // while a queue is asked to carry it out
};

} // namespace fernwick
