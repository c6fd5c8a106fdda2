#include "NetworkMonitorContract.h"
#include "support/FakePlatform.h"

namespace fernwick::platform {

namespace {

class FakeMonitorHarness {
public:
    void begin(SerialQueue& queue, std::function<void(NetworkPathStatus)> handler) {
        monitor_.emplace();
        monitor_->start(queue, std::move(handler));
        report(NetworkPathStatus::unsatisfied);
    }
    void connect() { report(NetworkPathStatus::satisfied); }
    void disconnect() { report(NetworkPathStatus::unsatisfied); }
    void end() { monitor_.reset(); }

private:
    void report(NetworkPathStatus status) {
        if (monitor_) {
            monitor_->report(status);
        }
    }

    std::optional<fakes::FakeNetworkMonitor> monitor_;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Fake, NetworkMonitorContract, FakeMonitorHarness);

} // namespace fernwick::platform
