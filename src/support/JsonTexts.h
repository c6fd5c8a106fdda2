// A JSON object all of whose values are texts.
// Threads: any.
#pragma once

#include <functional>
#include <string_view>

namespace fernwick::support {

// Calls `member` for each member of the object (RFC 8259), in the order of the text, a name that is there twice
// included; the views are good during the call. False, and without a call, when the bytes are no single JSON
// object in valid UTF-8 or any value is no string.
[[nodiscard]] bool
readJsonTexts(std::string_view json,
              const std::function<void(std::string_view name, std::string_view text)>& member);

} // namespace fernwick::support
