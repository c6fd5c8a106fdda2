#include "platform/linux/CloudFolder.h"

#include "platform/posix/AtomicFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

namespace fernwick::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestKey = 200; // leaves room for a temporary name within the 255 bytes of a file name

// What the names of unfinished files and of set-aside copies end with, or hold.
constexpr std::array<std::string_view, 5> kUnfinishedEnds{".tmp", ".part", ".partial", ".crdownload", ".lock"};
constexpr std::array<std::string_view, 2> kUnfinishedMarks{".tmp-", ".sync-conflict-"};

constexpr bool isKeyCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
           c == '.';
}

std::expected<std::vector<std::string>, int> keysIn(const std::string& folder) {
    std::vector<std::string> keys;
    std::error_code error;
    for (fs::directory_iterator place(folder, error), end; !error && place != end; place.increment(error)) {
        auto name = place->path().filename().string();
        if (isCloudKey(name)) {
            keys.push_back(std::move(name));
        }
    }
    if (error) {
        return std::unexpected(error.value());
    }
    std::ranges::sort(keys);
    return keys;
}

} // namespace

bool isCloudKey(std::string_view name) {
    return !name.empty() && name.size() <= kLongestKey && name.front() != '.' &&
           std::ranges::all_of(name, isKeyCharacter) &&
           std::ranges::none_of(kUnfinishedEnds, [&](auto end) { return name.ends_with(end); }) &&
           std::ranges::none_of(kUnfinishedMarks, [&](auto mark) { return name.contains(mark); });
}

bool CloudFolder::canBeListed() const {
    std::error_code error;
    const fs::directory_iterator place(path_, error);
    return !error;
}

std::expected<CloudFiles, int> CloudFolder::read(const std::set<std::string, std::less<>>& skipped) const {
    const auto keys = keysIn(path_);
    if (!keys) {
        return std::unexpected(keys.error());
    }
    CloudFiles files;
    std::size_t room = kMostBytes;
    for (const auto& key : *keys) {
        if (skipped.contains(key)) {
            files.unknown.insert(key);
            continue;
        }
        auto bytes = readWholeFile(pathOf(key), std::min(room, kLargestValue));
        if (bytes && !bytes->empty()) {
            room -= bytes->size();
            files.values.emplace(key, Data(std::move(*bytes)));
        } else if (bytes || bytes.error() != ENOENT) {
            files.unknown.insert(key);
        }
    }
    return files;
}

int CloudFolder::write(const std::string& key, const Data& value) {
    if (value.bytes().size() > kLargestValue) {
        return EFBIG;
    }
    if (tidied_.insert(key).second) {
        removeTemporaryFiles(pathOf(key));
    }
    return replaceFile(pathOf(key), value.bytes());
}

} // namespace fernwick::platform
