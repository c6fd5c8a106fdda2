// When a process began, by which it is told from a later one with its id. Threads: any.
#pragma once

#include <cstdint>
#include <optional>

namespace fernwick::platform {

// In clock ticks since the machine was started (`starttime` of /proc/PID/stat, proc(5)). Nothing when no such
// process lives; one that has ended and waits to be reaped does not.
[[nodiscard]] std::optional<std::uint64_t> processStart(int pid);

} // namespace fernwick::platform
