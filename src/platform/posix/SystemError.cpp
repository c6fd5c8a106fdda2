#include "platform/posix/SystemError.h"

#include <array>
#include <cstring>

namespace fernwick::platform {

std::string describeError(int code) {
    std::array<char, 256> buffer{};
    // The GNU function returns its text, which need not be in the buffer.
    return strerror_r(code, buffer.data(), buffer.size());
}

} // namespace fernwick::platform
