// Names of threads, for debuggers and /proc.
#pragma once

#include <string_view>

namespace fernwick::platform {

// Names the calling thread. Linux keeps 15 bytes (pthread_setname_np(3)); of a longer name, its end is taken.
void nameThisThread(std::string_view name);

} // namespace fernwick::platform
