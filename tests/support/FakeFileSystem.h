// Files in memory, which can fail on command.
// Threads: the test's thread.
#pragma once

#include "platform/FileSystem.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace fernwick::fakes {

class FakeFileSystem final : public platform::FileSystem {
public:
    struct File {
        std::string bytes;
        unsigned mode = 0;
    };

    [[nodiscard]] std::expected<void, platform::FileError>
    write(const std::string& path, std::string_view bytes, unsigned mode) override {
        if (writeFailure) {
            return std::unexpected(*writeFailure);
        }
        files.insert_or_assign(path, File{std::string(bytes), mode});
        return {};
    }
    [[nodiscard]] std::expected<void, platform::FileError>
    replaceContent(const std::string& path, std::string_view bytes, unsigned modeOfNew) override {
        const auto link = links.find(path);
        const auto& file = link != links.end() ? link->second : path;
        const auto found = files.find(file);
        return write(file, bytes, found != files.end() ? found->second.mode : modeOfNew);
    }
    [[nodiscard]] std::expected<void, platform::FileError> makeFolder(const std::string& path) override {
        if (folderFailure) {
            return std::unexpected(*folderFailure);
        }
        folders.insert(path);
        return {};
    }
    [[nodiscard]] bool exists(const std::string& path) override {
        return files.contains(path) || folders.contains(path);
    }
    [[nodiscard]] bool isReadable(const std::string& path) override {
        return exists(path) && !unreadable.contains(path);
    }
    [[nodiscard]] std::expected<std::string, platform::FileError> read(const std::string& path) override {
        if (onRead) {
            onRead(path);
        }
        const auto found = files.find(path);
        if (found == files.end()) {
            return std::unexpected(platform::FileError{2, "No such file or directory"});
        }
        if (unreadable.contains(path) || broken.contains(path)) {
            return unreadable.contains(path) ? std::unexpected(platform::FileError{13, "Permission denied"})
                                             : std::unexpected(platform::FileError{5, "Input/output error"});
        }
        return found->second.bytes;
    }
    [[nodiscard]] std::expected<std::vector<platform::FolderEntry>, platform::FileError>
    list(const std::string& folder) override {
        if (unreadable.contains(folder)) {
            return std::unexpected(platform::FileError{13, "Permission denied"});
        }
        std::vector<platform::FolderEntry> entries;
        for (const auto& [path, file] : files) {
            const auto slash = path.rfind('/');
            if (path.substr(0, slash) != folder || path[slash + 1] == '.') {
                continue;
            }
            const auto time = modified.find(path);
            const auto name = path.substr(slash + 1);
            entries.push_back({.name = name,
                               .modified = time != modified.end() ? std::optional(time->second) : std::nullopt,
                               .size = static_cast<std::int64_t>(file.bytes.size())});
        }
        if (entries.empty() && !folders.contains(folder)) {
            return std::unexpected(platform::FileError{2, "No such file or directory"});
        }
        return entries;
    }
    void removeUnfinished(const std::string& folder, const std::string& names) override {
        std::erase_if(files, [&](const auto& file) {
            return file.first.starts_with(folder + "/." + names) && file.first.contains(".tmp-");
        });
    }
    [[nodiscard]] std::expected<void, platform::FileError> remove(const std::string& path) override {
        if (undeletable.contains(path)) {
            return std::unexpected(platform::FileError{13, "Permission denied"});
        }
        if (files.erase(path) == 0) {
            return std::unexpected(platform::FileError{2, "No such file or directory"});
        }
        return {};
    }

    std::map<std::string, File> files;
    std::set<std::string> folders;
    std::map<std::string, std::string> links; // where a link leads, for replacing alone
    std::set<std::string> unreadable;         // paths that may not be read
    std::set<std::string> broken;             // paths that may be read, and cannot be
    std::set<std::string> undeletable;
    std::map<std::string, support::Date> modified;  // when a file changed; one without is of no known date
    std::function<void(const std::string&)> onRead; // called with each path that is about to be read
    std::optional<platform::FileError> writeFailure;
    std::optional<platform::FileError> folderFailure;
};

} // namespace fernwick::fakes
