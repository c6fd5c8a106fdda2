// The persisted list of tags.
// Threads: main thread only.
#pragma once

#include "catalogue/TunnelTag.h"
#include "platform/UserDefaults.h"
#include "support/Signal.h"

#include <string_view>
#include <vector>

namespace fernwick {

class TagManager {
public:
    // The defaults key that holds the list.
    static constexpr std::string_view kDefaultsKey = "savedTunnelTags";

    // Loads the list. Missing or undecodable data is replaced, in memory and on disk, by the five default tags.
    explicit TagManager(platform::UserDefaults& defaults);
    TagManager(const TagManager&) = delete;
    TagManager& operator=(const TagManager&) = delete;

    // The tags in their order; editors change the list in place and then call save.
    [[nodiscard]] const std::vector<TunnelTag>& tags() const { return tags_; }
    [[nodiscard]] std::vector<TunnelTag>& tags() { return tags_; }

    // The tag with that id, or null. The pointer is good until the next change.
    [[nodiscard]] const TunnelTag* find(const support::Uuid& id) const;

    // Writes the whole list and emits `changed`. A list that cannot be encoded is not written, and nobody is
    // told.
    void save();

    // Emitted by every save.
    support::Signal<> changed;

private:
    platform::UserDefaults& defaults_;
    std::vector<TunnelTag> tags_;
};

} // namespace fernwick
