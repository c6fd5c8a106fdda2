#include "NetworkMonitorContract.h"
#include "NetworkNamespace.h"
#include "platform/linux/RouteNetworkMonitor.h"

#include <filesystem>
#include <fstream>

namespace fernwick::platform {

namespace {

using enum NetworkPathStatus;

class RouteHarness {
public:
    void begin(SerialQueue& queue, std::function<void(NetworkPathStatus)> handler) {
        monitor_.emplace();
        monitor_->start(queue, std::move(handler));
    }
    void connect() const { network_.ip("route add default via 192.0.2.2"); }
    void disconnect() const { network_.ip("route del default"); }
    void end() { monitor_.reset(); }

private:
    NetworkNamespace network_;
    std::optional<RouteNetworkMonitor> monitor_;
};

class RouteNetworkMonitorTest : public testing::Test {
protected:
    void begin() { monitor_.start(queue_, statuses_.handler()); }

    // Starts where there is a network.
    void beginConnected() {
        network_.ip("route add default via 192.0.2.2");
        begin();
        ASSERT_TRUE(statuses_.become({satisfied}));
    }

    Statuses statuses_;
    ThreadQueue queue_{"test"};
    NetworkNamespace network_;
    RouteNetworkMonitor monitor_;
};

// How often the monitor's thread has slept.
std::string sleepsOfTheMonitor() {
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        std::getline(std::ifstream(task.path() / "comm"), name);
        if (name == "network path") {
            std::ifstream status(task.path() / "status");
            const std::string all{std::istreambuf_iterator<char>(status), {}};
            return all.substr(all.find("voluntary_ctxt_switches"));
        }
    }
    return {};
}

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Route, NetworkMonitorContract, RouteHarness);

TEST_F(RouteNetworkMonitorTest, PulledCableIsNoNetwork) {
    beginConnected();
    network_.ip("link set far down");
    EXPECT_TRUE(statuses_.become({satisfied, unsatisfied}));
    network_.ip("link set far up");
    EXPECT_TRUE(statuses_.become({satisfied, unsatisfied, satisfied}));
}

TEST_F(RouteNetworkMonitorTest, InterfaceThatIsSwitchedOffIsNoNetwork) {
    beginConnected();
    network_.ip("link set near down");
    EXPECT_TRUE(statuses_.become({satisfied, unsatisfied}));
}

TEST_F(RouteNetworkMonitorTest, RouteThatGoesWithItsAddressIsNoticed) {
    beginConnected();
    network_.ip("addr del 192.0.2.1/24 dev near");
    EXPECT_TRUE(statuses_.become({satisfied, unsatisfied}));
}

TEST_F(RouteNetworkMonitorTest, VersionSixAloneIsANetwork) {
    network_.ip("-6 route add default via 2001:db8::2 dev near");
    begin();
    EXPECT_TRUE(statuses_.become({satisfied}));
    network_.ip("-6 route del default");
    EXPECT_TRUE(statuses_.become({satisfied, unsatisfied}));
}

TEST_F(RouteNetworkMonitorTest, LoopbackAloneIsNoNetwork) {
    network_.ip("route add default dev lo");
    begin();
    EXPECT_TRUE(statuses_.become({unsatisfied}));
    EXPECT_TRUE(statuses_.stay({unsatisfied}));
}

TEST_F(RouteNetworkMonitorTest, OwnTunDeviceAloneIsNoNetwork) {
    network_.ip("tuntap add dev Meta mode tun");
    network_.ip("addr add 198.18.0.1/30 dev Meta");
    network_.ip("link set Meta up");
    network_.ip("route add default dev Meta table 2022");
    network_.ip("route add default dev Meta");
    begin();
    EXPECT_TRUE(statuses_.become({unsatisfied}));
    network_.ip("route add default via 192.0.2.2 metric 50");
    EXPECT_TRUE(statuses_.become({unsatisfied, satisfied}));
}

TEST_F(RouteNetworkMonitorTest, RouteOverSeveralHopsIsANetwork) {
    network_.ip("route add default nexthop via 192.0.2.2 nexthop via 192.0.2.3");
    begin();
    EXPECT_TRUE(statuses_.become({satisfied}));
}

TEST_F(RouteNetworkMonitorTest, SecondWayOutIsAChangeOfThePath) {
    beginConnected();
    network_.ip("-6 route add default via 2001:db8::2 dev near");
    EXPECT_TRUE(statuses_.become({satisfied, satisfied}));
    network_.ip("route del default");
    EXPECT_TRUE(statuses_.become({satisfied, satisfied, satisfied}));
}

TEST_F(RouteNetworkMonitorTest, BurstOfEventsIsOneChange) {
    beginConnected();
    std::string lines;
    for (int number = 0; number < 4000; ++number) { // more than the socket's buffer holds
        lines += "route add 10." + std::to_string(number / 250) + "." + std::to_string(number % 250) +
                 ".0/24 via 192.0.2.2\n";
    }
    network_.ipBatch(lines + "route del default\n");
    EXPECT_TRUE(statuses_.become({satisfied, unsatisfied}));
    EXPECT_TRUE(statuses_.stay({satisfied, unsatisfied}));
}

TEST_F(RouteNetworkMonitorTest, SleepsWhileNothingHappens) {
    beginConnected();
    // IPv6 settles for a while after an interface has come up.
    std::string before;
    EXPECT_TRUE(fakes::waitUntil([&] {
        before = sleepsOfTheMonitor();
        return fakes::staysTrue([&] { return sleepsOfTheMonitor() == before; }, std::chrono::milliseconds(300));
    }));
    EXPECT_FALSE(before.empty());
}

} // namespace fernwick::platform
