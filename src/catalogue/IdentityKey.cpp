#include "catalogue/IdentityKey.h"

namespace fernwick {

std::string_view IdentityKey::keyType() const {
    std::string_view name = path;
    while (name.size() > 1 && name.ends_with('/')) {
        name.remove_suffix(1);
    }
    if (const auto slash = name.rfind('/'); slash != std::string_view::npos) {
        name.remove_prefix(slash + 1);
    }
    if (name.contains("rsa")) {
        return "RSA";
    }
    if (name.contains("ed25519")) {
        return "Ed25519";
    }
    if (name.contains("ecdsa")) {
        return "ECDSA";
    }
    return name.ends_with(".pem") ? "PEM" : "Unknown";
}

} // namespace fernwick
