// Sets the desktops' proxy settings as the application does, and prints its lines:
//   proxy_program apply URL | without-tunnels URL | remove REASON | clear-stale URL
#include "platform/linux/DesktopProxySettings.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/PosixHostEnvironment.h"
#include "platform/posix/SystemClock.h"
#include "routing/SystemProxyManager.h"

#include <span>
#include <string_view>

int main(int count, char** words) {
    using namespace fernwick;
    const std::span arguments(words, static_cast<std::size_t>(count));
    if (arguments.size() != 3) {
        return 2;
    }
    const platform::ChildLauncher launcher;
    platform::PosixCommandRunner runner(launcher);
    platform::PosixFileSystem files;
    const platform::PosixHostEnvironment host;
    const platform::SystemClock clock;
    platform::DesktopProxySettings settings(runner, host, files);
    const SystemProxyManager manager(settings, clock, [](const std::string& /*text*/) {});
    const std::string_view what = arguments[1];
    if (what == "apply") {
        manager.apply("", {{support::Uuid::random(), "1080"}}, arguments[2]);
    } else if (what == "without-tunnels") {
        manager.apply("", {}, arguments[2]);
    } else if (what == "remove") {
        manager.removeAllProxy(arguments[2], false);
    } else if (what == "clear-stale") {
        manager.clearStale(arguments[2]);
    } else {
        return 2;
    }
    return 0;
}
