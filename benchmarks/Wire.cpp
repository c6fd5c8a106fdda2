#include "Wire.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fernwick {

namespace {

class Socket {
public:
    Socket() : descriptor_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    ~Socket() { close(descriptor_); }
    [[nodiscard]] int get() const { return descriptor_; }
    [[nodiscard]] bool connectTo(int port) const {
        auto address = loopback(port);
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): how the socket calls take addresses
        return ::connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }
    static sockaddr_in loopback(int port) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        return address;
    }

private:
    int descriptor_;
};

// The sum of a number that stands in files of /proc under a name.
long procSum(const std::string& path, const std::vector<std::string>& names) {
    std::ifstream file(path);
    long sum = 0;
    for (std::string name; file >> name;) {
        if (std::ranges::find(names, name) != names.end()) {
            long value = 0;
            file >> value;
            sum += value;
        }
    }
    return sum;
}

} // namespace

void spinUntil(const std::function<bool()>& holds) {
    const Stopwatch begun;
    while (!holds()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 2);
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        if (begun.milliseconds() > 30'000) {
            std::fputs("what was waited for did not come\n", stderr);
            std::_Exit(1);
        }
    }
}

void spinFor(std::chrono::milliseconds duration) {
    QEventLoop loop;
    QTimer::singleShot(duration, &loop, &QEventLoop::quit);
    loop.exec();
}

int freePort() {
    const Socket probe;
    auto address = Socket::loopback(0);
    socklen_t size = sizeof address;
    // NOLINTBEGIN(cppcoreguidelines-pro-type-reinterpret-cast): as above
    bind(probe.get(), reinterpret_cast<sockaddr*>(&address), size);
    getsockname(probe.get(), reinterpret_cast<sockaddr*>(&address), &size);
    // NOLINTEND(cppcoreguidelines-pro-type-reinterpret-cast)
    return ntohs(address.sin_port);
}

bool accepts(int port) {
    return Socket().connectTo(port);
}

Acceptance::Acceptance(int port)
    : thread_([this, port] {
          while (!accepts(port) && begun_.milliseconds() < 30'000) {
              std::this_thread::sleep_for(std::chrono::microseconds(500));
          }
          took_ = begun_.milliseconds();
      }) {}

double Acceptance::milliseconds() const {
    spinUntil([this] { return took_ >= 0; });
    return took_;
}

double fetchRate(int port, const std::string& site, int megabytes) {
    const Socket wire;
    const auto request =
        "GET /bytes/" + std::to_string(megabytes * 1'000'000) + " HTTP/1.0\r\nHost: " + site + "\r\n\r\n";
    if (!wire.connectTo(port) || write(wire.get(), request.data(), request.size()) < 0) {
        return 0;
    }
    std::vector<char> buffer(1 << 16);
    auto count = read(wire.get(), buffer.data(), buffer.size()); // the site has made its bytes by then
    const Stopwatch begun;
    double total = 0;
    while ((count = read(wire.get(), buffer.data(), buffer.size())) > 0) {
        total += static_cast<double>(count);
    }
    return total / 1e3 / begun.milliseconds();
}

long privateKibibytes() {
    return procSum("/proc/self/smaps_rollup", {"Private_Clean:", "Private_Dirty:"});
}

std::map<std::string, long> wakeUps() {
    std::map<std::string, long> counts;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        counts[task.path().filename()] = procSum(task.path() / "status", {"voluntary_ctxt_switches:"});
    }
    return counts;
}

long wakeUpsSince(const std::map<std::string, long>& before) {
    long sum = 0;
    for (const auto& [thread, count] : wakeUps()) {
        const auto earlier = before.find(thread);
        sum += count - (earlier != before.end() ? earlier->second : 0);
    }
    return sum;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

} // namespace fernwick
