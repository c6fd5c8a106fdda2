// Where a private key file lies. The key's contents are never read or stored by the application.
#pragma once

#include "support/Date.h"
#include "support/Record.h"
#include "support/Uuid.h"

#include <string>
#include <string_view>
#include <tuple>

namespace fernwick {

struct IdentityKey {
    support::Uuid id;
    std::string name;
    std::string path; // of the private key file, as ssh's "-i" takes it
    std::string comment;
    support::Date addedAt;

    bool operator==(const IdentityKey&) const = default;

    // The kind of key, guessed from the file's name alone: "RSA", "Ed25519", "ECDSA", "PEM" or "Unknown".
    [[nodiscard]] std::string_view keyType() const;

    static constexpr auto fields() {
        using support::field;
        return std::tuple{field("id", &IdentityKey::id), field("name", &IdentityKey::name),
                          field("path", &IdentityKey::path), field("comment", &IdentityKey::comment),
                          field("addedAt", &IdentityKey::addedAt)};
    }
};

} // namespace fernwick
