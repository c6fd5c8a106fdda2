// The items of a FakeFileSystem, which can fail on command.
// Threads: the test's thread.
#pragma once

#include "platform/FileItems.h"
#include "support/FakeFileSystem.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fernwick::fakes {

class FakeFileItems final : public platform::FileItems {
public:
    explicit FakeFileItems(FakeFileSystem& disk) : disk_(disk) {}

    [[nodiscard]] std::expected<std::vector<std::string>, platform::FileError>
    names(const std::string& folder) override {
        if (const auto failure = failureAt(folder)) {
            return std::unexpected(*failure);
        }
        if (!disk_.folders.contains(folder)) {
            return isThere(folder) ? error(20, "Not a directory") : error(2, "No such file or directory");
        }
        if (const auto given = order.find(folder); given != order.end()) {
            return given->second;
        }
        std::vector<std::string> names;
        for (const auto& path : paths()) {
            if (path.starts_with(folder + "/") && path.find('/', folder.size() + 1) == std::string::npos) {
                names.push_back(path.substr(folder.size() + 1));
            }
        }
        return names;
    }

    [[nodiscard]] std::expected<void, platform::FileError> copy(const std::string& from,
                                                                const std::string& to) override {
        if (const auto refused = refusal(from, to)) {
            return std::unexpected(*refused);
        }
        if (const auto failure = failureBelow(from)) {
            return std::unexpected(*failure);
        }
        copies.push_back(from);
        transfer(disk_.files, from, to);
        transfer(disk_.links, from, to);
        transfer(disk_.modified, from, to);
        for (const auto& folder : itemsOf(disk_.folders, from)) {
            disk_.folders.insert(to + folder.substr(from.size()));
        }
        return {};
    }

    [[nodiscard]] std::expected<void, platform::FileError> move(const std::string& from,
                                                                const std::string& to) override {
        if (auto copied = copy(from, to); !copied) {
            return copied;
        }
        copies.pop_back();
        return remove(from);
    }

    [[nodiscard]] std::expected<void, platform::FileError> remove(const std::string& path) override {
        if (!isThere(path)) {
            return error(2, "No such file or directory");
        }
        if (disk_.undeletable.contains(path)) {
            return error(13, "Permission denied");
        }
        std::erase_if(disk_.files, [&](const auto& file) { return isAtOrBelow(file.first, path); });
        std::erase_if(disk_.links, [&](const auto& link) { return isAtOrBelow(link.first, path); });
        std::erase_if(disk_.folders, [&](const auto& folder) { return isAtOrBelow(folder, path); });
        std::erase_if(special, [&](const auto& item) { return isAtOrBelow(item, path); });
        return {};
    }

    [[nodiscard]] bool isWritable(const std::string& path) override {
        return isThere(path) && !unwritable.contains(path);
    }

    std::set<std::string> special;                         // pipes, sockets and devices
    std::set<std::string> unwritable;                      // paths that may not be written to
    std::map<std::string, std::vector<std::string>> order; // of the names in a folder; sorted unless given
    std::map<std::string, platform::FileError> failures;   // of listing and of copying from a path
    std::vector<std::string> copies;                       // what was copied, in order

private:
    static std::unexpected<platform::FileError> error(int code, const char* description) {
        return std::unexpected(platform::FileError{code, description});
    }

    static bool isAtOrBelow(const std::string& path, const std::string& top) {
        return path == top || path.starts_with(top + "/");
    }

    [[nodiscard]] std::set<std::string> paths() const {
        auto paths = disk_.folders;
        paths.insert(special.begin(), special.end());
        for (const auto& [path, file] : disk_.files) {
            paths.insert(path);
        }
        for (const auto& [path, target] : disk_.links) {
            paths.insert(path);
        }
        return paths;
    }

    [[nodiscard]] static std::vector<std::string> itemsOf(const std::set<std::string>& from,
                                                          const std::string& top) {
        std::vector<std::string> items;
        std::ranges::copy_if(from, std::back_inserter(items),
                             [&](const auto& path) { return isAtOrBelow(path, top); });
        return items;
    }

    [[nodiscard]] bool isThere(const std::string& path) const { return paths().contains(path); }

    [[nodiscard]] std::optional<platform::FileError> failureAt(const std::string& path) const {
        const auto found = failures.find(path);
        return found != failures.end() ? std::optional(found->second) : std::nullopt;
    }

    [[nodiscard]] std::optional<platform::FileError> failureBelow(const std::string& top) const {
        for (const auto& path : itemsOf(paths(), top)) {
            if (const auto failure = failureAt(path)) {
                return failure;
            }
            if (special.contains(path)) {
                return platform::FileError{95, "Operation not supported"};
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] std::optional<platform::FileError> refusal(const std::string& from,
                                                             const std::string& to) const {
        if (!isThere(from)) {
            return platform::FileError{2, "No such file or directory"};
        }
        if (isThere(to)) {
            return platform::FileError{17, "File exists"};
        }
        if (disk_.folders.contains(from) && isAtOrBelow(to, from)) {
            return platform::FileError{22, "Invalid argument"};
        }
        return std::nullopt;
    }

    template <class Values>
    static void transfer(Values& values, const std::string& from, const std::string& to) {
        Values copied;
        for (const auto& [path, value] : values) {
            if (isAtOrBelow(path, from)) {
                copied.emplace(to + path.substr(from.size()), value);
            }
        }
        values.merge(copied);
    }

    FakeFileSystem& disk_;
};

} // namespace fernwick::fakes
