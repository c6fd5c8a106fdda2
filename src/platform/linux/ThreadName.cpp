#include "platform/ThreadName.h"

#include <algorithm>
#include <pthread.h>
#include <string>

namespace fernwick::platform {

void nameThisThread(std::string_view name) {
    constexpr std::size_t kLongest = 15;
    const std::string kept(name.substr(name.size() - std::min(name.size(), kLongest)));
    pthread_setname_np(pthread_self(), kept.c_str());
}

} // namespace fernwick::platform
