#include "platform/linux/SystemdUnit.h"

#include "platform/linux/Trimmed.h"
#include "support/Pieces.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <vector>

namespace fernwick::platform {

namespace {

constexpr std::string_view kCommandPrefixes = "@-:+!"; // systemd.service(5), "Command lines"
constexpr std::string_view kShell = "/bin/sh";
constexpr std::string_view kShellScript = R"(exec "$0" "$@")";

bool isControl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7f;
}

// systemd refuses an executable's path with quotes, backslashes or control characters, however it is quoted; as
// an argument it takes any text.
bool isPlainExecutable(std::string_view path) {
    return std::ranges::none_of(path, [](char character) {
        return character == '"' || character == '\'' || character == '\\' || isControl(character);
    });
}

std::string commandLine(const ServiceProgram& program) {
    std::string line;
    if (!isPlainExecutable(program.executable)) {
        line = std::string(kShell) + " -c " + systemdWord(kShellScript) + " ";
    }
    line += systemdWord(program.executable);
    for (const auto& argument : {std::string("-d"), program.folder, std::string("-f"), program.configuration}) {
        line += " " + systemdWord(argument);
    }
    return line;
}

// What an escape stands for (systemd.syntax(7)); `rest` begins behind the backslash and loses what was read.
char unescaped(std::string_view& rest) {
    const char kind = rest.front();
    rest.remove_prefix(1);
    constexpr std::string_view kLetters = "abfnrtvs";
    constexpr std::string_view kMeanings = "\a\b\f\n\r\t\v ";
    if (const auto at = kLetters.find(kind); at != std::string_view::npos) {
        return kMeanings[at];
    }
    unsigned char byte = 0;
    const auto digits = rest.substr(0, 2);
    if (kind == 'x' && digits.size() == 2 &&
        std::from_chars(digits.data(), digits.data() + 2, byte, 16).ptr == digits.data() + 2) {
        rest.remove_prefix(2);
        return static_cast<char>(byte);
    }
    return kind;
}

// Splits a command line into its words. A quotation that never ends goes to the end of the line.
std::vector<std::string> wordsOf(std::string_view rest) {
    std::vector<std::string> words;
    bool inWord = false;
    char quote = '\0';
    while (!rest.empty()) {
        char character = rest.front();
        rest.remove_prefix(1);
        if (quote == '\0' && (character == ' ' || character == '\t')) {
            inWord = false;
            continue;
        }
        if (!inWord) {
            words.emplace_back();
            inWord = true;
        }
        if (quote != '\0' ? character == quote : character == '"' || character == '\'') {
            quote = quote != '\0' ? '\0' : character;
            continue;
        }
        if (character == '\\' && !rest.empty()) {
            character = unescaped(rest);
        } else if (character == '%' && rest.starts_with('%')) {
            rest.remove_prefix(1);
        }
        words.back() += character;
    }
    return words;
}

std::optional<std::string> executableOf(std::string_view command) {
    const auto prefixes = std::min(command.find_first_not_of(kCommandPrefixes), command.size());
    const auto words = wordsOf(command.substr(prefixes));
    if (words.size() > 3 && words[0] == kShell && words[1] == "-c" && words[2] == kShellScript) {
        return words[3];
    }
    return !words.empty() && words.front().starts_with('/') ? std::optional(words.front()) : std::nullopt;
}

void readSetting(std::string_view key, std::string_view value, SystemdUnitFacts& facts) {
    if (key == "ExecStart" && !facts.executable) {
        facts.executable = executableOf(value);
    } else if (key == "User" && value == "root") {
        facts.asRoot = true;
    } else if (key == "InstalledFor") {
        const auto words = wordsOf(value);
        facts.installedFor = words.empty() ? std::nullopt : std::optional(words.front());
    }
}

} // namespace

std::string systemdUnit(const ServiceProgram& program, std::string_view user) {
    // ":" switches the substitution of variables off. The application decides about restarts, so systemd
    // neither makes nor counts any. An engine that does not end on SIGTERM is killed, its network device with
    // it.
    return fmt::format(R"(# Written by Fernwick, which starts and stops this service.
[Unit]
Description=Proxy engine of Fernwick
StartLimitIntervalSec=0

[Service]
Type=simple
ExecStart=:{0}
User=root
Restart=no
KillMode=mixed
TimeoutStopSec=10
StandardOutput=append:{1}
StandardError=append:{1}

[X-Fernwick]
InstalledFor={2}
)",
                       commandLine(program), kServiceLog, systemdWord(user));
}

SystemdUnitFacts readSystemdUnit(std::string_view text) {
    SystemdUnitFacts facts;
    support::forEachPiece(text, '\n', [&](std::string_view piece) {
        const auto line = trimmed(piece);
        const auto equals = line.find('=');
        const bool comment = line.starts_with('#') || line.starts_with(';');
        if (!comment && equals != std::string_view::npos) {
            readSetting(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)), facts);
        }
        return true;
    });
    return facts;
}

std::string systemdWord(std::string_view text) {
    // systemd drops lines that are no UTF-8; bytes that are none travel as escapes.
    const bool utf8 = support::isValidUtf8(text);
    std::string word = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            word += '\\';
            word += character;
        } else if (character == '%') {
            word += "%%";
        } else if (isControl(character) || (!utf8 && static_cast<unsigned char>(character) >= 0x80)) {
            word += fmt::format("\\x{:02x}", static_cast<unsigned char>(character));
        } else {
            word += character;
        }
    }
    return word + '"';
}

} // namespace fernwick::platform
