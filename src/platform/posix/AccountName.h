// Who runs the application. Threads: any.
#pragma once

#include <string>

namespace fernwick::platform {

// The name of the account (getpwuid(3) of the real user id), or the id's number when it has none.
[[nodiscard]] std::string accountName();

} // namespace fernwick::platform
