// Datagrams as the kernel sends them in answer to a question for its interfaces and routes. A way that is found
// must still be there when the same datagram comes a second time, and nothing but a disturbance may be added.
#include "platform/linux/NetworkPath.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace fernwick::platform;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto datagram = std::as_bytes(std::span(data, size));
    NetworkPath path;
    const auto state = path.take(datagram, 1);
    const auto ways = path.ways();
    if (path.take(datagram, 1) != state || path.ways() != ways) {
        std::abort();
    }
    return 0;
}
