// What the update server answers, and the texts that are made of it.
// Threads: any.
#pragma once

#include <expected>
#include <string>
#include <string_view>

namespace fernwick {

struct UpdateAnswer {
    std::string version;     // as the server wrote it, with or without the letter v
    std::string downloadURL; // of the archive, a valid URL
    std::string notes;       // release notes; empty when there are none

    bool operator==(const UpdateAnswer&) const = default;
};

// The answer that the bytes hold, or the message for the person: they are no JSON (RFC 8259), or no object with
// "version" and with a valid URL as "download_url". "notes" may be missing; other members are ignored. Of a
// member that is there twice the last one counts.
[[nodiscard]] std::expected<UpdateAnswer, std::string> parseUpdateAnswer(std::string_view bytes);

// The version to compare with: without any letter "v", wherever it stands.
[[nodiscard]] std::string comparableVersion(std::string_view version);

// What is asked about a version: the version as it was written, its notes, and the question.
[[nodiscard]] std::string updateQuestion(const UpdateAnswer& answer);

// "You are using the latest version (...)."
[[nodiscard]] std::string latestVersionText(std::string_view current);

} // namespace fernwick
