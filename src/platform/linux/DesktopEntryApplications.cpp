#include "platform/linux/DesktopEntryApplications.h"

#include "platform/linux/DesktopEntry.h"
#include "platform/linux/LaunchedProgram.h"
#include "platform/posix/FileDescriptor.h"
#include "support/Pieces.h"
#include "support/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace fernwick::platform {

namespace {

constexpr int kDeepestFolder = 8;
constexpr std::size_t kFirstLine = 256; // the kernel looks no further for an interpreter (execve(2))

std::string valueOf(const Environment& variables, std::string_view name) {
    const auto found = variables.find(name);
    return found == variables.end() ? std::string() : found->second;
}

// The first bytes of a regular file, at most so many. Opening a pipe or a device must not wait for anybody.
std::optional<std::string> firstBytes(const std::string& path, std::size_t most) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat state{};
    if (!file || fstat(file.get(), &state) != 0 || !S_ISREG(state.st_mode)) {
        return std::nullopt;
    }
    std::string bytes(std::min(most, static_cast<std::size_t>(state.st_size) + 1), '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const auto got = read(file.get(), bytes.data() + length, bytes.size() - length);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        length += static_cast<std::size_t>(got);
    }
    bytes.resize(length);
    return bytes;
}

bool isExecutable(const std::string& path) {
    struct stat state{};
    return stat(path.c_str(), &state) == 0 && S_ISREG(state.st_mode) && access(path.c_str(), X_OK) == 0;
}

// Where a program lies, as it was called; empty when there is none.
std::string placeOf(const std::string& program, const std::vector<std::string>& path) {
    if (program.contains('/')) {
        return program.starts_with('/') && isExecutable(program) ? program : std::string();
    }
    for (const auto& folder : path) {
        if (auto place = folder + "/" + program; isExecutable(place)) {
            return place;
        }
    }
    return {};
}

// The base name of what a path leads to, links followed; empty when that cannot be told.
std::string realName(const std::string& place) {
    const std::unique_ptr<char, void (*)(void*)> real(realpath(place.c_str(), nullptr), std::free);
    return real ? std::string(baseName(real.get())) : std::string();
}

// The interpreter that a script names in its first line, as a program to look for; empty for other files.
std::string interpreterOf(const std::string& place) {
    const auto start = firstBytes(place, kFirstLine).value_or(std::string());
    if (!start.starts_with("#!")) {
        return {};
    }
    const std::string_view line = std::string_view(start).substr(2, start.find('\n') - 2);
    std::vector<std::string> command;
    support::forEachPiece(line, ' ', [&](std::string_view word) {
        command.emplace_back(word);
        return true;
    });
    if (command.empty() || baseName(command.front()) != "env") {
        return command.empty() ? std::string() : command.front();
    }
    std::erase(command, "-S");
    const auto program = launchedProgram(std::move(command));
    return program ? program->program : std::string();
}

// What the kernel will call a program, or our best guess; empty when there is no such program.
std::string processName(const LaunchedProgram& launched, const std::vector<std::string>& path) {
    if (launched.isSandboxed) {
        return launched.program;
    }
    const auto place = placeOf(launched.program, path);
    auto name = place.empty() ? std::string() : realName(place);
    if (name == "snap" && baseName(place) != name) { // every snap's command is a link to that one program
        return std::string(baseName(place).substr(baseName(place).rfind('.') + 1));
    }
    const auto interpreter = name.empty() ? std::string() : interpreterOf(place);
    if (interpreter.empty() || isShell(baseName(interpreter))) {
        return name;
    }
    const auto interpreterPlace = placeOf(interpreter, path);
    return interpreterPlace.empty() ? std::string() : realName(interpreterPlace);
}

// The desktop files of a folder and those below, by desktop file id.
class EntryFiles {
public:
    struct File {
        std::string id;
        std::string path;
    };

    void addFolder(const std::string& folder) { walk(folder, {}, 0); }
    [[nodiscard]] const std::vector<File>& files() const { return files_; }

private:
    void walk(const std::string& folder, const std::string& prefix, int depth) {
        struct stat state{};
        if (depth > kDeepestFolder || stat(folder.c_str(), &state) != 0 || !S_ISDIR(state.st_mode) ||
            !folders_.emplace(state.st_dev, state.st_ino).second) {
            return;
        }
        std::error_code failure; // a folder that cannot be read has no applications
        std::filesystem::directory_iterator item(folder, failure);
        for (; !failure && item != std::filesystem::directory_iterator(); item.increment(failure)) {
            const auto name = item->path().filename().string();
            std::error_code unknown;
            if (item->is_directory(unknown)) {
                walk(item->path().string(), prefix + name + "-", depth + 1);
            } else if (name.ends_with(".desktop") && files_.size() < DesktopEntryApplications::kMostFiles &&
                       ids_.insert(prefix + name).second) {
                files_.push_back({prefix + name, item->path().string()});
            }
        }
    }

    std::vector<File> files_;
    std::set<std::string> ids_;
    std::set<std::pair<dev_t, ino_t>> folders_; // that were walked: links may lead in circles
};

// A rule is a line of text: what does not fit into one cannot be matched.
bool isUsable(std::string_view value) {
    return !value.empty() && support::isValidUtf8(value) &&
           std::ranges::none_of(value, [](char byte) { return byte >= '\0' && byte < ' '; });
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lower;
}

void sortByName(std::vector<InstalledApplication>& applications) {
    std::vector<std::pair<std::string, InstalledApplication>> keyed;
    keyed.reserve(applications.size());
    for (auto& application : applications) {
        auto key = lowerCase(application.name);
        keyed.emplace_back(std::move(key), std::move(application));
    }
    std::ranges::sort(keyed, [](const auto& one, const auto& other) {
        return std::tie(one.first, one.second.name, one.second.value, one.second.icon) <
               std::tie(other.first, other.second.name, other.second.value, other.second.icon);
    });
    std::ranges::transform(keyed, applications.begin(), [](auto& pair) { return std::move(pair.second); });
    const auto same = std::ranges::unique(applications, [](const auto& one, const auto& other) {
        return one.name == other.name && one.value == other.value;
    });
    applications.erase(same.begin(), same.end());
}

} // namespace

DesktopEntryApplications::DesktopEntryApplications(const HostEnvironment& host) {
    const auto variables = host.variables();
    const auto home = valueOf(variables, "HOME");
    auto data = valueOf(variables, "XDG_DATA_HOME");
    if (!data.starts_with('/')) {
        data = (home.starts_with('/') ? home : host.accountHome()) + "/.local/share";
    }
    auto others = valueOf(variables, "XDG_DATA_DIRS");
    if (others.empty()) {
        others = "/usr/local/share:/usr/share";
    }
    const auto all = data + ":" + others;
    support::forEachPiece(all, ':', [this](std::string_view folder) {
        if (folder.starts_with('/')) { // relative ones are to be ignored
            folders_.push_back(std::string(folder) + "/applications");
        }
        return true;
    });
    const auto path = valueOf(variables, "PATH");
    support::forEachPiece(path, ':', [this](std::string_view folder) {
        path_.emplace_back(folder);
        return true;
    });
    for (const auto* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const auto locale = valueOf(variables, name); !locale.empty()) {
            locales_ = localesFitting(locale);
            break;
        }
    }
}

std::vector<InstalledApplication> DesktopEntryApplications::list() {
    EntryFiles files;
    for (const auto& folder : folders_) {
        files.addFolder(folder);
    }
    std::vector<InstalledApplication> applications;
    for (const auto& file : files.files()) {
        const auto bytes = firstBytes(file.path, kLargestFile + 1);
        if (!bytes || bytes->size() > kLargestFile) {
            continue;
        }
        auto entry = parseDesktopEntry(*bytes, locales_);
        if (!entry || !entry->isShown || (!entry->tryExec.empty() && placeOf(entry->tryExec, path_).empty())) {
            continue;
        }
        const auto launched = launchedProgram(std::move(entry->command));
        auto value = launched ? processName(*launched, path_) : std::string();
        if (isUsable(value)) {
            auto name = entry->name.empty() ? value : std::move(entry->name);
            applications.push_back({std::move(name), std::move(value), std::move(entry->icon)});
        }
    }
    sortByName(applications);
    return applications;
}

} // namespace fernwick::platform
