// A file in the backup folder, as the list of backups shows it.
#pragma once

#include "support/Date.h"
#include "support/Uuid.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace fernwick {

struct BackupEntry {
    support::Uuid id;          // fresh for each listing, so it says nothing about the file
    std::string url;           // the file's path
    support::Date date;        // when its content changed last; the time of the listing if that is unknown
    std::int64_t fileSize = 0; // in bytes; 0 if it is unknown

    bool operator==(const BackupEntry&) const = default;

    // The file's name, without its folder.
    [[nodiscard]] std::string_view name() const { return std::string_view(url).substr(url.rfind('/') + 1); }
};

} // namespace fernwick
