#include "screens/settings/KeyEncryption.h"

#include "support/Secret.h"
#include "support/Text.h"

namespace fernwick {

bool readsAsEncrypted(platform::FileSystem& files, const std::string& path) {
    auto text = files.read(path);
    if (!text) {
        return false;
    }
    const bool encrypted = support::isValidUtf8(*text) && text->contains("ENCRYPTED");
    support::wipe(*text);
    return encrypted;
}

} // namespace fernwick
