// Where the copy of the catalogue in the cloud stands.
#pragma once

#include <string>
#include <utility>

namespace fernwick {

struct ICloudStatus {
    enum Case {
        checking,    // nobody knows yet whether there is an account
        available,   // there is one
        unavailable, // there is none
        syncing,     // a push or a pull runs
        synced,      // the last one, or a change from elsewhere, is through
        error,       // the last push failed; `message` says what
    };

    // Implicit, so that a case without a message is a status.
    ICloudStatus(Case which = checking, std::string text = {}) : kind(which), message(std::move(text)) {}

    bool operator==(const ICloudStatus&) const = default;

    // What a person reads, e.g. "Not signed in to iCloud" or "Error: Sync failed".
    [[nodiscard]] std::string label() const;

    Case kind;
    std::string message; // of an error; empty otherwise
};

} // namespace fernwick
