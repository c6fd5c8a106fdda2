// Why profiles could not be imported.
// Threads: any.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace fernwick {

class ImportError {
public:
    enum class Case { cancelled, invalidFile, parseError };

    // The panel was dismissed.
    [[nodiscard]] static ImportError cancelled() { return ImportError(Case::cancelled, "Import cancelled"); }

    // The file is not what Fernwick SSH exports.
    [[nodiscard]] static ImportError invalidFile() {
        return ImportError(Case::invalidFile, "File không hợp lệ hoặc không đúng định dạng .fernwick");
    }

    // Anything else, in the system's words, e.g. "No such file or directory".
    [[nodiscard]] static ImportError parseError(std::string_view message) {
        return ImportError(Case::parseError, "Parse error: " + std::string(message));
    }

    [[nodiscard]] Case kind() const { return kind_; }

    // What a person reads.
    [[nodiscard]] const std::string& description() const { return description_; }

    bool operator==(const ImportError&) const = default;

private:
    ImportError(Case kind, std::string description) : kind_(kind), description_(std::move(description)) {}

    Case kind_;
    std::string description_;
};

} // namespace fernwick
