// Error numbers of the system in words. Threads: any.
#pragma once

#include <string>

namespace fernwick::platform {

// What strerror says, e.g. "No such file or directory" for ENOENT.
[[nodiscard]] std::string describeError(int code);

} // namespace fernwick::platform
