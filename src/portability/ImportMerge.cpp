#include "portability/ImportMerge.h"

#include "catalogue/StoredList.h"
#include "support/RecordWriter.h"

#include <unordered_set>
#include <utility>

namespace fernwick {

std::string importedText(std::size_t count) {
    return "Imported " + std::to_string(count) + " tunnel" + (count == 1 ? "" : "s") + " from Fernwick SSH.";
}

void ImportMerge::merge(const std::vector<Tunnel>& delivered) {
    auto tunnels = readStoredList<Tunnel>(defaults_, TunnelStore::kDefaultsKey).value_or(std::vector<Tunnel>());
    std::unordered_set<support::Uuid> stored;
    for (const auto& tunnel : tunnels) {
        stored.insert(tunnel.id);
    }
    for (const auto& tunnel : delivered) {
        if (!stored.contains(tunnel.id)) {
            tunnels.push_back(tunnel);
        }
    }
    auto json = support::encodeList(tunnels);
    if (!json) {
        return; // by design nobody is told: the success was announced before
    }
    defaults_.set(TunnelStore::kDefaultsKey, {platform::Data(std::move(*json))});
    defaults_.synchronize();
    // Queued, so that the store reloads once the import has returned.
    dispatch_.main([self = self_.weak()] {
        if (auto* merge = self.get()) {
            merge->store_.reload();
            merge->notifications_.post(TunnelStore::kDidChangeNotification);
        }
    });
}

} // namespace fernwick
