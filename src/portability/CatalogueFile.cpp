#include "portability/CatalogueFile.h"

#include "support/Base64.h"
#include "support/JsonTexts.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

namespace fernwick {
namespace {

// Neither a name of the table nor base64 has a character that JSON escapes.
void appendMember(std::string& json, std::string_view name, std::string_view bytes) {
    json += json.empty() ? '{' : ',';
    json += '"';
    json += name;
    json += "\":\"";
    support::appendBase64(json, bytes);
    json += '"';
}

std::string encode(const CatalogueBlobs& blobs) {
    constexpr std::size_t kMemberRoom = 32; // beside the bytes
    std::size_t size = 0;
    for (std::size_t list = 0; list < kCatalogueLists.size(); ++list) {
        size += blobs[list] ? support::base64Size(blobs[list]->bytes().size()) + kMemberRoom : 0;
    }
    std::string json;
    json.reserve(size);
    for (std::size_t list = 0; list < kCatalogueLists.size(); ++list) {
        if (blobs[list]) {
            appendMember(json, kCatalogueLists[list].fileKey, blobs[list]->bytes());
        }
    }
    return json.empty() ? "{}" : json + '}';
}

} // namespace

CatalogueBlobs readCatalogue(const platform::UserDefaults& defaults) {
    CatalogueBlobs blobs;
    for (std::size_t list = 0; list < kCatalogueLists.size(); ++list) {
        blobs[list] = defaults.data(kCatalogueLists[list].defaultsKey);
    }
    return blobs;
}

void storeCatalogue(platform::UserDefaults& defaults, const CatalogueBlobs& blobs) {
    for (std::size_t list = 0; list < kCatalogueLists.size(); ++list) {
        if (blobs[list]) {
            defaults.set(kCatalogueLists[list].defaultsKey, {*blobs[list]});
        }
    }
}

std::optional<std::string> encodeCatalogue(const CatalogueBlobs& blobs) {
    try {
        return encode(blobs);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    } catch (const std::length_error&) {
        return std::nullopt;
    }
}

std::optional<CatalogueBlobs> decodeCatalogue(std::string_view bytes) {
    CatalogueBlobs blobs;
    bool hasMember = false;
    const bool read = support::readJsonTexts(bytes, [&](std::string_view name, std::string_view text) {
        hasMember = true;
        const auto found = std::ranges::find(kCatalogueLists, name, &CatalogueList::fileKey);
        if (found != kCatalogueLists.end()) {
            auto decoded = support::decodeBase64(text);
            blobs[static_cast<std::size_t>(found - kCatalogueLists.begin())] =
                decoded ? std::optional(platform::Data(*std::move(decoded))) : std::nullopt;
        }
    });
    return read && hasMember ? std::optional(std::move(blobs)) : std::nullopt;
}

} // namespace fernwick
