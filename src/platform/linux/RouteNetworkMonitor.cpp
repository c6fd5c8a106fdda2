#include "platform/linux/RouteNetworkMonitor.h"

#include "platform/ThreadName.h"
#include "platform/linux/NetworkPath.h"

#include <array>
#include <cerrno>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <utility>
#include <vector>

namespace fernwick::platform {

namespace {

using Handler = std::function<void(NetworkPathStatus)>;
using Clock = std::chrono::steady_clock;

// The kernel fills no more at once.
constexpr std::size_t kDatagram = 32UL * 1024;

FileDescriptor openNetlink(unsigned groups, int flags) {
    FileDescriptor opened(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | flags, NETLINK_ROUTE));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = groups;
    if (opened && bind(opened.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        opened.reset();
    }
    return opened;
}

// The number of received bytes; 0 when there are none (any more), or the call failed.
std::size_t receive(int number, std::vector<std::byte>& buffer, int& error) {
    ssize_t count = -1;
    do {
        count = recv(number, buffer.data(), buffer.size(), 0);
    } while (count < 0 && errno == EINTR);
    error = count < 0 ? errno : 0;
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

// Asks for all messages of a kind, RTM_GETLINK or RTM_GETROUTE. `Body` says how the question goes on.
template <class Body>
bool ask(const FileDescriptor& netlink, int type, std::uint32_t sequence, const Body& body) {
    struct {
        nlmsghdr header;
        Body body;
    } question{};
    question.header.nlmsg_len = sizeof(question);
    question.header.nlmsg_type = static_cast<std::uint16_t>(type);
    question.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    question.header.nlmsg_seq = sequence;
    question.body = body;
    return send(netlink.get(), &question, sizeof(question), 0) == static_cast<ssize_t>(sizeof(question));
}

// Reads one answer into `path`.
NetworkPath::Dump readAnswer(const FileDescriptor& netlink, std::uint32_t sequence, NetworkPath& path) {
    std::vector<std::byte> buffer(kDatagram);
    while (true) {
        int error = 0;
        const auto size = receive(netlink.get(), buffer, error);
        if (size == 0) {
            return error == ENOBUFS ? NetworkPath::Dump::disturbed : NetworkPath::Dump::failed;
        }
        if (const auto state = path.take(std::span(buffer).first(size), sequence);
            state != NetworkPath::Dump::more) {
            return state;
        }
    }
}

// Reads both tables; nothing when they cannot be read.
std::optional<NetworkWays> presentWays() {
    constexpr int kAttempts = 10; // as often as the tables may change while they are read
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const auto netlink = openNetlink(0, 0);
        if (!netlink) {
            return std::nullopt;
        }
        NetworkPath path;
        auto state = NetworkPath::Dump::failed;
        if (ask(netlink, RTM_GETLINK, 1, ifinfomsg{})) {
            state = readAnswer(netlink, 1, path);
        }
        if (state == NetworkPath::Dump::done && ask(netlink, RTM_GETROUTE, 2, rtmsg{})) {
            state = readAnswer(netlink, 2, path);
        }
        if (state == NetworkPath::Dump::done) {
            return path.ways();
        }
        if (state == NetworkPath::Dump::failed) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

// What the thread does.
class Watch {
public:
    Watch(FileDescriptor events, int stop, SerialQueue& queue, Handler handler)
        : events_(std::move(events)),
          stop_(stop),
          queue_(queue),
          handler_(std::make_shared<Handler>(std::move(handler))) {}

    void run() {
        nameThisThread("network path");
        tellIfChanged();
        while (waitForChange() && settle()) {
            tellIfChanged();
        }
    }

private:
    // False when the end has come.
    [[nodiscard]] bool waitForChange() const {
        std::array<pollfd, 2> watched{{{events_.get(), POLLIN, 0}, {stop_, POLLIN, 0}}};
        while (poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
        }
        return watched[1].revents == 0;
    }

    // Waits until the change is old enough, then takes note of all that was told so far. False when the end
    // came.
    [[nodiscard]] bool settle() {
        const auto due = Clock::now() + RouteNetworkMonitor::kSettle;
        pollfd stopped{stop_, POLLIN, 0};
        for (auto now = Clock::now(); now < due && stopped.revents == 0; now = Clock::now()) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - now);
            poll(&stopped, 1, static_cast<int>(left.count()));
        }
        int error = 0;
        // Where events were lost (ENOBUFS) there are more to be read; the tables are asked for in any case.
        while (receive(events_.get(), buffer_, error) > 0 || error == ENOBUFS) {
        }
        return stopped.revents == 0;
    }

    void tellIfChanged() {
        auto ways = presentWays();
        if (!ways || ways == told_) {
            return;
        }
        const auto status = ways->empty() ? NetworkPathStatus::unsatisfied : NetworkPathStatus::satisfied;
        told_ = std::move(ways);
        queue_.async([handler = handler_, status] { (*handler)(status); });
    }

    FileDescriptor events_;
    int stop_;
    SerialQueue& queue_;
    std::shared_ptr<Handler> handler_; // also of what is queued when the monitor goes
    std::optional<NetworkWays> told_;
    std::vector<std::byte> buffer_ = std::vector<std::byte>(kDatagram);
};

} // namespace

RouteNetworkMonitor::RouteNetworkMonitor() : stop_(eventfd(0, EFD_CLOEXEC)) {}

RouteNetworkMonitor::~RouteNetworkMonitor() {
    if (thread_.joinable()) {
        eventfd_write(stop_.get(), 1);
        thread_.join();
    }
}

void RouteNetworkMonitor::start(SerialQueue& queue, Handler pathUpdateHandler) {
    // Addresses too: the kernel takes routes away with an address or a link without telling of the routes.
    constexpr unsigned kGroups =
        RTMGRP_LINK | RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    auto events = openNetlink(kGroups, SOCK_NONBLOCK);
    if (!events || !stop_) {
        return;
    }
    auto watch = std::make_unique<Watch>(std::move(events), stop_.get(), queue, std::move(pathUpdateHandler));
    thread_ = std::thread([watch = std::move(watch)] { watch->run(); });
}

} // namespace fernwick::platform
