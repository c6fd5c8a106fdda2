// Bytes of a property list, as a preference file or a foreign application's file may hold them. Whatever is
// read must come back the same when it is written and read again.
#include "platform/posix/PropertyListFile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ranges>

using namespace fernwick::platform;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto value = parsePropertyList(bytes);
    const auto* dictionary = value ? value->as<PropertyDictionary>() : nullptr;
    if (dictionary != nullptr) {
        const auto again = parsePropertyList(encodePropertyList(*dictionary));
        const auto* same = again ? again->as<PropertyDictionary>() : nullptr;
        if (same == nullptr || !std::ranges::equal(std::views::keys(*same), std::views::keys(*dictionary))) {
            std::abort();
        }
    }
    return 0;
}
