#include "catalogue/KeyManager.h"

#include "catalogue/StoredList.h"

#include <algorithm>

namespace fernwick {

KeyManager::KeyManager(platform::UserDefaults& defaults) : defaults_(defaults) {
    if (auto stored = readStoredList<IdentityKey>(defaults_, kDefaultsKey)) {
        keys_ = std::move(*stored);
        save();
    }
}

void KeyManager::save() {
    writeStoredList(defaults_, kDefaultsKey, keys_);
}

void KeyManager::add(IdentityKey key) {
    if (std::ranges::find(keys_, key.path, &IdentityKey::path) != keys_.end()) {
        return;
    }
    keys_.push_back(std::move(key));
    save();
    changed.emit();
}

void KeyManager::remove(const support::Uuid& id) {
    std::erase_if(keys_, [&](const IdentityKey& key) { return key.id == id; });
    save();
    changed.emit();
}

void KeyManager::update(const IdentityKey& key) {
    const auto found = std::ranges::find(keys_, key.id, &IdentityKey::id);
    if (found == keys_.end()) {
        return;
    }
    *found = key;
    save();
    changed.emit();
}

} // namespace fernwick
