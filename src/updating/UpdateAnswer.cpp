#include "updating/UpdateAnswer.h"

#include "support/JsonReader.h"
#include "updating/UrlText.h"

#include <optional>

namespace fernwick {

namespace {

// The members that count, each absent while none of a fitting type has come.
struct Members {
    bool areRead = false; // the bytes were JSON
    std::optional<std::string> version;
    std::optional<std::string> downloadURL;
    std::optional<std::string> notes;
};

bool readMember(support::JsonReader& /*reader*/, std::string_view name, const support::JsonValue& value,
                void* out) {
    auto& members = *static_cast<Members*>(out);
    if (name == "version") {
        members.version = value.text();
    } else if (name == "download_url") {
        members.downloadURL = value.text();
    } else if (name == "notes") {
        members.notes = value.text();
    }
    return true;
}

bool readMembers(support::JsonReader& reader, const support::JsonValue& value, void* out) {
    static_cast<Members*>(out)->areRead = true;
    return reader.readMembers(value, &readMember, out);
}

} // namespace

std::expected<UpdateAnswer, std::string> parseUpdateAnswer(std::string_view bytes) {
    support::JsonReader reader;
    Members members;
    const bool isObject = reader.readDocument(bytes, &readMembers, &members);
    if (!members.areRead) {
        return std::unexpected("Update check error: " + reader.takeError().message);
    }
    if (!isObject || !members.version || !members.downloadURL || !isValidUrl(*members.downloadURL)) {
        return std::unexpected("Invalid JSON from Update Server.");
    }
    return UpdateAnswer{.version = *std::move(members.version),
                        .downloadURL = *std::move(members.downloadURL),
                        .notes = std::move(members.notes).value_or("")};
}

std::string comparableVersion(std::string_view version) {
    std::string kept(version);
    std::erase(kept, 'v');
    return kept;
}

std::string updateQuestion(const UpdateAnswer& answer) {
    return "New version " + answer.version + " is available.\n\n" + answer.notes +
           "\n\nWould you like to download and install it now?";
}

std::string latestVersionText(std::string_view current) {
    return "You are using the latest version (" + std::string(current) + ").";
}

} // namespace fernwick
