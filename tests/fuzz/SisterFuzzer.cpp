// Imports any bytes as an export of Fernwick SSH. They are refused as a whole, or give tunnels that keep to
// what the import promises and survive being stored.
#include "SampleCatalogue.h"
#include "portability/FernwickSSHImporter.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileSystem.h"
#include "support/FakePlatform.h"
#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace fernwick;
using fuzz::require;

void check(const Tunnel& tunnel) {
    require(!tunnel.host.empty() && !tunnel.user.empty(), "a tunnel that cannot be", tunnel.name);
    require(!tunnel.remoteHost.empty(), "no far end", tunnel.name);
    require(tunnel.sshPort != "22", "a port that goes without saying", tunnel.name);
    require(tunnel.tunnelType != TunnelType::dynamicForward, "a kind that is never made", tunnel.name);
    require(tunnel.notes.starts_with("Imported from Fernwick SSH · key: "), "other notes", tunnel.notes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock(dispatch);
    fakes::FakeFileSystem files;
    fakes::FakeDialogs dialogs;
    const auto result = FernwickSSHImporter(dialogs, files, clock).parse(bytes);
    if (!result) {
        require(result.error() == ImportError::invalidFile(), "another error", result.error().description());
        return 0;
    }
    for (const auto& tunnel : *result) {
        check(tunnel);
    }
    const auto json = support::encodeList(*result);
    require(json.has_value(), "tunnels that cannot be stored", bytes);
    require(support::decodeList<Tunnel>(*json) == *result, "tunnels that change when they are stored", bytes);
    return 0;
}
