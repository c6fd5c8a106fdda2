// The folder by which a person's machines share blobs: one file per key, with the bytes as they are.
// Threads: any, one at a time; canBeListed() beside the others too. Every operation may wait for the disk.
#pragma once

#include "platform/PropertyValue.h"

#include <cstddef>
#include <expected>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace fernwick::platform {

// Whether the name can be a key, and a file of that name a value: up to 200 letters, digits, "_", "-" and ".",
// all ASCII, no dot in front, and none of the names that programs give to files that are not finished, such as
// "*.tmp", "*.part", our own "*.tmp-123", and Syncthing's "*.sync-conflict-*".
[[nodiscard]] bool isCloudKey(std::string_view name);

// What stands in the folder. A key that is in neither has no file.
struct CloudFiles {
    std::map<std::string, Data, std::less<>> values;
    // Keys whose file tells nothing: it cannot be read, is no regular file, is too large, or is empty, as one
    // is that a sync program has just begun or that only holds the place of one that is elsewhere.
    std::set<std::string, std::less<>> unknown;
};

class CloudFolder {
public:
    // In bytes; a file that is larger is left alone.
    static constexpr std::size_t kLargestValue = 64UL * 1024 * 1024;

    // Of all values together, so that a folder that somebody keeps pictures in does not fill the memory. The
    // files that come behind, by name, are left alone.
    static constexpr std::size_t kMostBytes = 4 * kLargestValue;

    explicit CloudFolder(std::string path) : path_(std::move(path)) {}

    // Whether there is a folder whose contents can be listed.
    [[nodiscard]] bool canBeListed() const;

    // Reads every file whose name is a key; those of `skipped` are unknown unseen. The error is the system's
    // number (errno(3)) for why the folder cannot be listed.
    [[nodiscard]] std::expected<CloudFiles, int> read(const std::set<std::string, std::less<>>& skipped) const;

    // Replaces the file of the key atomically, for its owner alone. It is on disk when this returns. Makes no
    // folder. Returns 0, or the error that left the old file as it was; EFBIG for a value that nobody would
    // read.
    [[nodiscard]] int write(const std::string& key, const Data& value);

private:
    [[nodiscard]] std::string pathOf(const std::string& key) const { return path_ + "/" + key; }

    const std::string path_;
    std::set<std::string, std::less<>> tidied_; // keys beside which no killed writer's leftovers lie any more
};

} // namespace fernwick::platform
