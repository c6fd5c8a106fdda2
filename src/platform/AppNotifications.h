// Names of the announcements that the shell makes for the whole application.
#pragma once

#include <string_view>

namespace fernwick::platform {

// Posted on the main thread once, while the application ends; what must not outlive it stops now.
inline constexpr std::string_view kApplicationWillTerminate = "applicationWillTerminate";

} // namespace fernwick::platform
