// Restores any bytes. Exactly one message is told; only a known form changes the tunnels; and what was read as
// a file of lists comes out of an export as the same lists.
#include "SampleCatalogue.h"
#include "portability/SyncManager.h"
#include "support/FakeClock.h"
#include "support/FakeCloudStore.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakePlatform.h"
#include "support/FakeUserDefaults.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace fernwick;
using fuzz::require;

constexpr std::string_view kTunnels = "savedTunnelsData_v2";

// Restores the bytes, and returns what was told; `tunnels` becomes what is stored then.
std::vector<std::string> restore(const std::string& bytes, std::string& tunnels) {
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock(dispatch);
    fakes::FakeUserDefaults defaults;
    fakes::FakeFileSystem files;
    fakes::FakeDialogs dialogs;
    fakes::FakeCloudStore cloud(dispatch);
    fakes::FakeHostEnvironment host;
    support::NotificationCenter notifications;
    ProxyRuleStore rules(defaults, dispatch);
    SyncManager manager({defaults, dispatch, clock, files, dialogs, cloud, notifications, host, rules});
    std::vector<std::string> told;
    defaults.setData(kTunnels, tunnels);
    files.files["/in"] = {bytes, 0600};
    manager.restoreBackup("/in", [&](bool, const std::string& message) { told.push_back(message); });
    dispatch.advance(std::chrono::seconds(1));
    tunnels = defaults.data(kTunnels)->bytes();
    return told;
}

void checkLists(const std::string& bytes) {
    const auto blobs = decodeCatalogue(bytes);
    if (!blobs || *blobs == CatalogueBlobs()) {
        return;
    }
    const auto file = encodeCatalogue(*blobs);
    require(file.has_value(), "lists without a file");
    require(decodeCatalogue(*file) == blobs, "lists that changed on their way", *file);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    std::string tunnels = "old";
    const auto told = restore(bytes, tunnels);
    require(told.size() == 1, "not one message");
    if (told[0] == "Tunnels restored successfully") {
        require(tunnels == bytes, "a list that is not kept as it is", bytes);
    } else if (told[0] == "Unrecognised backup format") {
        require(tunnels == "old", "tunnels of an unknown form", bytes);
    } else {
        require(told[0] == "Restore successful", "an unknown message", told[0]);
    }
    checkLists(bytes);
    return 0;
}
