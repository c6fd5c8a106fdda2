#include "catalogue/TagManager.h"

#include "catalogue/StoredList.h"

#include <algorithm>

namespace fernwick {

namespace {

std::vector<TunnelTag> defaultTags() {
    const auto tag = [](std::string_view name, std::string_view colour) {
        return TunnelTag{support::Uuid::random(), std::string(name), std::string(colour)};
    };
    return {tag("Production", "#FF453A"), tag("Staging", "#FF9F0A"), tag("Development", "#30D158"),
            tag("Database", "#0A84FF"), tag("Personal", "#BF5AF2")};
}

} // namespace

TagManager::TagManager(platform::UserDefaults& defaults) : defaults_(defaults) {
    auto stored = readStoredList<TunnelTag>(defaults_, kDefaultsKey);
    tags_ = stored ? std::move(*stored) : defaultTags();
    save();
}

const TunnelTag* TagManager::find(const support::Uuid& id) const {
    const auto found = std::ranges::find(tags_, id, &TunnelTag::id);
    return found != tags_.end() ? &*found : nullptr;
}

void TagManager::save() {
    writeStoredList(defaults_, kDefaultsKey, tags_);
    changed.emit();
}

} // namespace fernwick
