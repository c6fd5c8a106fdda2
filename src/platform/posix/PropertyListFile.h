// Property lists as bytes: binary ones are written, binary and XML ones are read.
// Threads: any.
#pragma once

#include "platform/PropertyValue.h"

#include <optional>
#include <string>
#include <string_view>

namespace fernwick::platform {

// The value that the bytes hold; nothing when they are no property list, hold a kind of value that preferences
// do not have, or nest deeper or grow larger than PropertyListGuard.h allows.
[[nodiscard]] std::optional<PropertyValue> parsePropertyList(std::string_view bytes);

// The dictionary as a binary property list. Text ends at its first NUL, and keeps only its ASCII bytes when it
// is not UTF-8. Dates keep whole microseconds and lie within 68 years of 2001, as libplist has them; before
// 2001 one may be a microsecond off.
[[nodiscard]] std::string encodePropertyList(const PropertyDictionary& dictionary);

} // namespace fernwick::platform
