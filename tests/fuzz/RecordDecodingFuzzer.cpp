// Decodes any bytes as a list of tunnels. What decodes must be JSON to a parser of the whole text, encode, and
// decode to the same list again.
#include "catalogue/Tunnel.h"
#include "support/RecordHash.h"
#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <simdjson.h>

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>

namespace {

void require(bool holds, std::string_view what) {
    if (!holds) {
        std::cerr << what << '\n';
        std::abort();
    }
}

// A parser of the whole text, which may be one level deeper than the elements that the reader parses.
simdjson::dom::parser wholeParser(std::string_view json) {
    simdjson::dom::parser parser;
    require(parser.allocate(json.size() + 1, simdjson::DEFAULT_MAX_DEPTH + 1) == simdjson::SUCCESS,
            "no memory");
    return parser;
}

void checkTunnels(std::string_view json) {
    using namespace fernwick;
    const auto tunnels = support::decodeList<Tunnel>(json);
    if (!tunnels) {
        require(!tunnels.error().message.empty(), "a failure without a reason");
        return;
    }
    auto parser = wholeParser(json);
    require(parser.parse(json.data(), json.size()).error() == simdjson::SUCCESS, "decoded what is no JSON");
    const auto encoded = support::encodeList(*tunnels);
    require(encoded.has_value(), "decoded what does not encode");
    const auto again = support::decodeList<Tunnel>(*encoded);
    require(again && *again == *tunnels, "a tunnel changed on its way");
    for (std::size_t index = 0; index < tunnels->size(); ++index) {
        require(support::hashOf((*again)[index]) == support::hashOf((*tunnels)[index]),
                "equal ones, other hashes");
    }
}

// A record without required keys decodes from any array of objects, so that far more texts go all the way.
struct Anything {
    std::optional<std::string> name;

    bool operator==(const Anything&) const = default;

    static constexpr auto fields() { return std::tuple{fernwick::support::field("name", &Anything::name)}; }
};

// Whether a parsed value is an `Anything`.
bool fitsAnything(const simdjson::dom::element& element) {
    simdjson::dom::object object;
    if (element.get(object) != simdjson::SUCCESS) {
        return false;
    }
    bool fits = true;
    for (const auto& [key, value] : object) {
        fits = fits && (key != "name" || value.is_string() || value.is_null());
    }
    return fits;
}

// Splitting a text into elements must neither add nor lose anything that a parser of the whole text sees.
void checkSplitting(std::string_view json) {
    const auto list = fernwick::support::decodeList<Anything>(json);
    auto parser = wholeParser(json);
    simdjson::dom::array array;
    const bool whole = parser.parse(json.data(), json.size()).get(array) == simdjson::SUCCESS;
    if (list) {
        require(whole && array.size() == list->size(), "split an array wrongly");
        return;
    }
    bool fits = whole;
    if (whole) {
        for (const auto element : array) {
            fits = fits && fitsAnything(element);
        }
    }
    require(!fits, "refused a list that is one");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string json(data, data + size);
    checkTunnels(json);
    checkSplitting(json);
    return 0;
}
