// IPv4 addresses, networks and ranges as people type them. The readings differ in how strict they are, each
// being what its callers have always accepted. Threads: any.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

// Whether exactly four of the pieces between dots are numbers from 0 to 255. Pieces that are none are passed
// over, so "1.2.3.x.4" is valid.
[[nodiscard]] bool isValidIPv4(std::string_view text);

// Whether the text is an address that `isValidIPv4` accepts, "/" and a prefix length from 0 to 32.
[[nodiscard]] bool isValidCIDR(std::string_view text);

// The address as a number, the first piece in the highest byte. Pieces that are no numbers are passed over, and
// four must remain; a number above 255 runs into the byte above it, bits beyond the 32nd are lost.
[[nodiscard]] std::optional<std::uint32_t> ipToUInt32(std::string_view text);

// Whether the text has exactly four pieces between dots, each a whole number below 256.
[[nodiscard]] bool isIPv4Literal(std::string_view text);

// The fewest networks, in order, that hold exactly the addresses from the first to the second of "a-b", each
// read with `ipToUInt32`. Absent when there are not two, one does not read, or the first is above the second.
[[nodiscard]] std::optional<std::vector<std::string>> ipRangeToCIDRs(std::string_view text);

} // namespace fernwick
