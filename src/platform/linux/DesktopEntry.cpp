#include "platform/linux/DesktopEntry.h"

#include "support/Text.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace fernwick::platform {

namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Resolves the escapes that every value may hold. What is no escape stays, for it may be one of the command's.
std::string unescaped(std::string_view value) {
    constexpr std::string_view codes = "sntr\\";
    constexpr std::string_view meanings = " \n\t\r\\";
    std::string text;
    for (std::size_t at = 0; at < value.size(); ++at) {
        const auto code =
            value[at] == '\\' && at + 1 < value.size() ? codes.find(value[at + 1]) : std::string_view::npos;
        if (code == std::string_view::npos) {
            text += value[at];
        } else {
            text += meanings[code];
            ++at;
        }
    }
    return text;
}

// Splits the value of Exec into arguments.
class CommandReader {
public:
    // Empty when a quotation does not end.
    std::vector<std::string> read(std::string_view exec) {
        for (std::size_t at = 0; at < exec.size(); ++at) {
            const bool pair = at + 1 < exec.size();
            const char next = pair ? exec[at + 1] : '\0';
            if (quoted_) {
                at += takeQuoted(exec[at], next, pair) ? 1 : 0;
            } else {
                at += takeBare(exec[at], next, pair) ? 1 : 0;
            }
        }
        endArgument();
        return quoted_ ? std::vector<std::string>() : std::move(arguments_);
    }

private:
    // Both return whether the character behind was used up as well.
    bool takeQuoted(char character, char next, bool pair) {
        if (character == '"') {
            quoted_ = false;
            return false;
        }
        const bool escape = character == '\\' && pair && std::string_view("\"`$\\").contains(next);
        const bool percent = character == '%' && next == '%';
        argument_ += escape ? next : character;
        return escape || percent;
    }

    bool takeBare(char character, char next, bool pair) {
        if (character == ' ' || character == '\t' || character == '\n') {
            endArgument();
            return false;
        }
        if (character == '"') {
            quoted_ = begun_ = true;
            return false;
        }
        if (character == '%' && next != '%') { // a field code, in whose place files and the like would stand
            return pair;
        }
        begun_ = true;
        const bool escape = (character == '\\' || character == '%') && pair;
        argument_ += escape ? next : character;
        return escape;
    }

    void endArgument() {
        if (begun_) {
            arguments_.push_back(std::exchange(argument_, {}));
            begun_ = false;
        }
    }

    std::vector<std::string> arguments_;
    std::string argument_;
    bool begun_ = false;
    bool quoted_ = false;
};

// What has been read of an entry so far.
class EntryReader {
public:
    explicit EntryReader(const std::vector<std::string>& locales)
        : locales_(locales), bestName_(locales.size() + 1) {}

    void take(std::string_view key, std::string_view value) {
        if (key == "Type") {
            isApplication_ = value == "Application";
        } else if (key == "Hidden") {
            isHidden_ = value == "true";
        } else if (key == "NoDisplay") {
            isKeptOut_ = value == "true";
        } else if (key == "Exec") {
            entry_.command = CommandReader().read(unescaped(value));
        } else if (key == "TryExec") {
            entry_.tryExec = unescaped(value);
        } else if (key == "Icon") {
            entry_.icon = unescaped(value);
        } else {
            takeName(key, value);
        }
    }

    [[nodiscard]] DesktopEntry finished() && {
        entry_.isShown = isApplication_ && !isHidden_ && !isKeptOut_;
        return std::move(entry_);
    }

private:
    // A name counts if it is in a better language than the one before, and can be read at all.
    void takeName(std::string_view key, std::string_view value) {
        std::size_t rank = locales_.size();
        if (key != "Name") {
            if (!key.starts_with("Name[") || !key.ends_with("]")) {
                return;
            }
            key.remove_prefix(std::string_view("Name[").size());
            key.remove_suffix(1);
            const auto found = std::ranges::find(locales_, key);
            if (found == locales_.end()) {
                return;
            }
            rank = static_cast<std::size_t>(found - locales_.begin());
        }
        auto name = unescaped(value);
        if (rank < bestName_ && support::isValidUtf8(name)) {
            entry_.name = std::move(name);
            bestName_ = rank;
        }
    }

    const std::vector<std::string>& locales_;
    std::size_t bestName_; // its place among the locales; the untranslated name comes behind them
    DesktopEntry entry_;
    bool isApplication_ = false;
    bool isHidden_ = false;
    bool isKeptOut_ = false;
};

} // namespace

std::vector<std::string> localesFitting(std::string_view locale) {
    const auto at = locale.find('@');
    const std::string modifier(at == std::string_view::npos ? std::string_view() : locale.substr(at));
    locale = locale.substr(0, std::min(at, locale.find('.')));
    const std::string language(locale.substr(0, locale.find('_')));
    const std::string country(locale.substr(language.size()));
    if (language.empty() || language == "C" || language == "POSIX") {
        return {};
    }
    std::vector<std::string> locales;
    for (const auto& fitting :
         {language + country + modifier, language + country, language + modifier, language}) {
        if (std::ranges::find(locales, fitting) == locales.end()) {
            locales.push_back(fitting);
        }
    }
    return locales;
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view bytes, const std::vector<std::string>& locales) {
    EntryReader entry(locales);
    bool found = false;
    bool inside = false;
    for (std::size_t at = 0; at < bytes.size();) {
        const auto end = std::min(bytes.find('\n', at), bytes.size());
        const auto line = trimmed(bytes.substr(at, end - at));
        at = end + 1;
        if (line.starts_with('[')) {
            inside = !found && line == "[Desktop Entry]";
            found = found || inside;
            continue;
        }
        const auto equals = line.find('=');
        if (inside && equals != std::string_view::npos && !line.starts_with('#')) {
            entry.take(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
        }
    }
    if (!found) {
        return std::nullopt;
    }
    return std::move(entry).finished();
}

} // namespace fernwick::platform
