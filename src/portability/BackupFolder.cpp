#include "portability/BackupFolder.h"

#include "support/LocalTime.h"

#include <functional>
#include <map>

namespace fernwick {
namespace {

// What a backup's name begins with; an export's does too.
constexpr std::string_view kNameStart = "Fernwick_";
constexpr std::string_view kDefaultFolder = "/Documents/Fernwick/Backups"; // below the person's home

} // namespace

BackupFolder::BackupFolder(platform::FileSystem& files, const platform::Clock& clock,
                           const platform::HostEnvironment& host)
    : files_(files), clock_(clock), host_(host) {}

std::string BackupFolder::pathOf(const std::string& backupPath) const {
    if (!backupPath.empty()) {
        return backupPath;
    }
    const auto variables = host_.variables();
    const auto home = variables.find("HOME");
    const bool given = home != variables.end() && home->second.starts_with('/');
    return (given ? home->second : host_.accountHome()) + std::string(kDefaultFolder);
}

std::string BackupFolder::nameAt(support::Date date) {
    return std::string(kNameStart) + support::localFileStamp(date) + ".backup";
}

std::vector<BackupEntry> BackupFolder::entries(const std::string& folder) const {
    const auto listed = files_.list(folder);
    if (!listed) {
        return {}; // by design nobody is told
    }
    const auto now = clock_.now();
    std::multimap<support::Date, const platform::FolderEntry*, std::greater<>>
        newestFirst; // and else as listed
    for (const auto& file : *listed) {
        if (file.name.starts_with(kNameStart)) {
            newestFirst.emplace(file.modified.value_or(now), &file);
        }
    }
    std::vector<BackupEntry> entries;
    entries.reserve(newestFirst.size());
    for (const auto& [date, file] : newestFirst) {
        entries.push_back({.id = support::Uuid::random(),
                           .url = folder + "/" + file->name,
                           .date = date,
                           .fileSize = file->size.value_or(0)});
    }
    return entries;
}

std::expected<void, platform::FileError> BackupFolder::make(const std::string& folder) const {
    return files_.makeFolder(folder);
}

std::expected<void, platform::FileError> BackupFolder::write(const std::string& path,
                                                             std::string_view bytes) const {
    return files_.write(path, bytes, platform::kOwnerOnlyFile);
}

void BackupFolder::remove(const std::string& path) const {
    (void)files_.remove(path); // what cannot be removed stays in the list, where it is seen
}

} // namespace fernwick
