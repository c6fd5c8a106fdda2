// Trees of files, links and folders. Numbers returned as errors are the system's (errno(3)), 0 for success.
// Threads: any.
#pragma once

#include <expected>
#include <string>
#include <vector>

namespace fernwick::platform {

// What stands in a folder, hidden things too, without `.` and `..`.
[[nodiscard]] std::expected<std::vector<std::string>, int> namesIn(const std::string& folder);

// Copies an item with its permission bits and times, to where nothing stands. A link is copied as a link;
// EOPNOTSUPP for a pipe, a socket or a device. What was copied before a failure stays.
[[nodiscard]] int copyTree(const std::string& from, const std::string& to);

// Removes an item and all below it, and nothing elsewhere, though others rename in it meanwhile. The first
// error ends it.
[[nodiscard]] int removeTree(const std::string& path);

// The same for a tree of our own making, folders that nobody may change included; goes as far as it can.
void clearTree(const std::string& path);

} // namespace fernwick::platform
