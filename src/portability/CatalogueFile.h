// The catalogue as it travels: five lists, each an opaque document that is stored as raw bytes under a key of
// the user defaults, and the file that holds them all.
//
// The file is one JSON object (RFC 8259) in UTF-8. A member's name is one of the names below, its value the
// bytes in base64 (RFC 4648, section 4: standard alphabet, padding, no line breaks). A list that is not stored
// has no member. There is no version, no date and no checksum. Threads: any, but for what takes UserDefaults.
#pragma once

#include "platform/PropertyValue.h"
#include "platform/UserDefaults.h"

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace fernwick {

// One list, and what it is called on each way.
struct CatalogueList {
    std::string_view fileKey;     // in a file
    std::string_view defaultsKey; // in the user defaults
    std::string_view storeKey;    // in the cloud
};

// The places of the lists in `kCatalogueLists`.
enum class CatalogueIndex : std::size_t { tunnels, tags, keys, proxies, rules };

inline constexpr std::array kCatalogueLists{
    CatalogueList{"tunnels", "savedTunnelsData_v2", "fernWick_tunnels_v2"},
    CatalogueList{"tags", "savedTunnelTags", "fernWick_tags_v1"},
    CatalogueList{"keys", "savedSSHKeys", "fernWick_keys_v1"},
    CatalogueList{"proxies", "com.fernwick.proxies", "fernWick_proxies_v1"},
    CatalogueList{"rules", "com.fernwick.rules", "fernWick_rules_v1"},
};

[[nodiscard]] constexpr const CatalogueList& listAt(CatalogueIndex index) {
    return kCatalogueLists[static_cast<std::size_t>(index)];
}

// The bytes of each list, in the order of `kCatalogueLists`; absent where there is nothing.
class CatalogueBlobs {
public:
    using Blob = std::optional<platform::Data>;

    [[nodiscard]] Blob& operator[](CatalogueIndex list) { return blobs_[static_cast<std::size_t>(list)]; }
    [[nodiscard]] const Blob& operator[](CatalogueIndex list) const {
        return blobs_[static_cast<std::size_t>(list)];
    }
    [[nodiscard]] Blob& operator[](std::size_t list) { return blobs_[list]; }
    [[nodiscard]] const Blob& operator[](std::size_t list) const { return blobs_[list]; }
    bool operator==(const CatalogueBlobs&) const = default;

private:
    std::array<Blob, kCatalogueLists.size()> blobs_;
};

// What is stored now. Main thread; copies no list.
[[nodiscard]] CatalogueBlobs readCatalogue(const platform::UserDefaults& defaults);

// Stores the lists that are there; the others keep what is stored. Main thread.
void storeCatalogue(platform::UserDefaults& defaults, const CatalogueBlobs& blobs);

// The bytes of a file that holds the lists, or nothing when there is not enough memory for it.
[[nodiscard]] std::optional<std::string> encodeCatalogue(const CatalogueBlobs& blobs);

// Makes the bytes of a file, or nothing.
using CatalogueEncoder = std::function<std::optional<std::string>(const CatalogueBlobs&)>;

// The lists in a file; nothing when it is no JSON object, one of its values is no text, or it has no member. A
// value that is no base64 is left out, and so is a member of any other name. Of a name that is there twice, the
// last one stands.
[[nodiscard]] std::optional<CatalogueBlobs> decodeCatalogue(std::string_view bytes);

} // namespace fernwick
