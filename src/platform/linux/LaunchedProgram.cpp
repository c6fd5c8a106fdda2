#include "platform/linux/LaunchedProgram.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace fernwick::platform {

namespace {

using Command = std::vector<std::string>;

constexpr int kMostLaunchers = 8; // one behind the other
constexpr std::array<std::string_view, 7> kShells{"sh", "bash", "dash", "zsh", "ksh", "ash", "fish"};
constexpr std::array<std::string_view, 9> kLaunchers{
    "nohup", "setsid", "pkexec", "nice", "ionice", "stdbuf", "prime-run", "gamemoderun", "dbus-run-session"};
// A shell's own commands, behind which the program still comes.
constexpr std::array<std::string_view, 4> kPreparations{"cd", "export", "set", "unset"};

bool isAssignment(std::string_view word) {
    const auto equals = word.find('=');
    return equals != std::string_view::npos && equals > 0 && word.find('/') > equals;
}

// Takes words away from the front while they are options, with the values of those that have one.
void dropOptions(Command& command, std::string_view withValue) {
    std::size_t count = 0;
    while (count < command.size() && command[count].starts_with('-')) {
        const auto& option = command[count++];
        if (option == "--") {
            break;
        }
        count += option == "--user" || (option.size() == 2 && withValue.contains(option[1])) ? 1 : 0;
    }
    command.erase(command.begin(),
                  command.begin() + static_cast<std::ptrdiff_t>(std::min(count, command.size())));
}

// The commands of a shell's command line, as words. What the shell would have to work out stays as it stands.
std::vector<Command> shellCommands(std::string_view line) {
    std::vector<Command> commands(1);
    std::string word;
    bool begun = false;
    char quote = '\0';
    const auto endWord = [&] {
        if (std::exchange(begun, false)) {
            commands.back().push_back(std::exchange(word, {}));
        }
    };
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char character = line[at];
        if (character == '\\' && quote != '\'' && at + 1 < line.size()) {
            word += line[++at];
            begun = true;
        } else if (quote != '\0' ? character == quote : character == '"' || character == '\'') {
            quote = quote == '\0' ? character : '\0';
            begun = true;
        } else if (quote == '\0' && std::string_view(" \t").contains(character)) {
            endWord();
        } else if (quote == '\0' && std::string_view("\n;&|<>()").contains(character)) {
            endWord();
            commands.emplace_back();
        } else {
            word += character;
            begun = true;
        }
    }
    endWord();
    return commands;
}

// The first command of the line that runs a program.
Command programOfLine(std::string_view line) {
    for (auto& command : shellCommands(line)) {
        while (!command.empty() && (isAssignment(command.front()) || command.front() == "exec")) {
            command.erase(command.begin());
        }
        if (!command.empty() && std::ranges::find(kPreparations, command.front()) == kPreparations.end()) {
            return std::move(command);
        }
    }
    return {};
}

Command behindEnv(Command command) {
    command.erase(command.begin());
    if (command.size() > 1 && (command.front() == "-S" || command.front() == "--split-string")) {
        return programOfLine(command[1]);
    }
    dropOptions(command, "uC");
    std::erase_if(command, [ended = false](const std::string& word) mutable {
        ended = ended || !isAssignment(word);
        return !ended;
    });
    return command;
}

Command behindShell(const Command& command) {
    const auto option = std::ranges::find_if(command, [](const std::string& word) {
        return word.starts_with('-') && !word.starts_with("--") && word.ends_with('c');
    });
    if (option != command.end()) {
        return option + 1 != command.end() ? programOfLine(*(option + 1)) : Command();
    }
    Command script(command.begin() + 1, command.end());
    dropOptions(script, "o");
    // Not looked into: a script has another's command line.
    return script.empty() ? Command() : Command{script.front()};
}

std::optional<LaunchedProgram> inFlatpak(const Command& command) {
    constexpr std::string_view option = "--command=";
    std::string_view application;
    for (std::size_t at = 2; at < command.size() && application.empty(); ++at) {
        if (command[at].starts_with(option)) {
            const auto name = baseName(std::string_view(command[at]).substr(option.size()));
            return name.empty() ? std::nullopt : std::optional(LaunchedProgram{std::string(name), true});
        }
        if (!command[at].starts_with('-')) {
            application = command[at];
        }
    }
    application = application.substr(0, application.find('/')); // the branch may stand behind
    std::string name(application.substr(application.rfind('.') + 1));
    std::ranges::transform(name, name.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return name.empty() ? std::nullopt : std::optional(LaunchedProgram{std::move(name), true});
}

} // namespace

std::string_view baseName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

bool isShell(std::string_view name) {
    return std::ranges::find(kShells, name) != kShells.end();
}

std::optional<LaunchedProgram> launchedProgram(Command command) {
    for (int launchers = 0; launchers < kMostLaunchers && !command.empty(); ++launchers) {
        const std::string name(baseName(command.front()));
        if (name == "env") {
            command = behindEnv(std::move(command));
        } else if (isShell(name) && command.size() > 1) {
            command = behindShell(command);
        } else if (name == "flatpak" && command.size() > 1 && command[1] == "run") {
            return inFlatpak(command);
        } else if (std::ranges::find(kLaunchers, name) != kLaunchers.end()) {
            command.erase(command.begin());
            dropOptions(command, "nceiou");
        } else if (name.empty() || command.front().contains('$')) {
            return std::nullopt;
        } else {
            return LaunchedProgram{command.front()};
        }
    }
    return std::nullopt;
}

} // namespace fernwick::platform
