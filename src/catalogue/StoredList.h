// A list of records that is kept whole, as JSON, under one key of the user defaults.
// Threads: main thread only.
#pragma once

#include "platform/UserDefaults.h"
#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace fernwick {

// The stored list, or nothing when the key is missing or holds anything but a whole, valid list.
template <support::Record R>
[[nodiscard]] std::optional<std::vector<R>> readStoredList(const platform::UserDefaults& defaults,
                                                           std::string_view key) {
    const auto data = defaults.data(key);
    if (!data) {
        return std::nullopt;
    }
    auto list = support::decodeList<R>(data->bytes());
    // By design nobody is told why a list could not be read; each owner has its own rule for what follows.
    return list ? std::optional(std::move(*list)) : std::nullopt;
}

// Stores the list. One that cannot be encoded leaves what is stored as it was, and nobody is told.
template <support::Record R>
void writeStoredList(platform::UserDefaults& defaults, std::string_view key, const std::vector<R>& list) {
    if (auto json = support::encodeList(list)) {
        defaults.set(key, {platform::Data(std::move(*json))});
    }
}

} // namespace fernwick
