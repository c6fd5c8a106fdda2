// Catalogues of any size to measure with, about 570 bytes of JSON per tunnel.
#pragma once

#include "catalogue/Tunnel.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace fernwick::benchmarks {

// Tunnels whose names start with `label`; two of three fields of free text are filled, as in catalogues of
// people.
[[nodiscard]] std::vector<Tunnel> sampleTunnels(std::size_t count, std::string_view label);

} // namespace fernwick::benchmarks
