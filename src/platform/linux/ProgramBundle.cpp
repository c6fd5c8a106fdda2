#include "platform/linux/ProgramBundle.h"

#include "platform/posix/AtomicFile.h"
#include "platform/posix/PropertyListFile.h"

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace fernwick::platform {

namespace {

// The longest Info.plist that is read.
constexpr std::size_t kMostBytes = 1U << 20U;

std::string variable(const Environment& environment, std::string_view name) {
    const auto found = environment.find(name);
    return found != environment.end() ? found->second : std::string();
}

// Whether the program came out of the AppImage that the environment names.
bool isAppImage(const Environment& environment, const std::string& program) {
    const auto image = variable(environment, "APPIMAGE");
    const auto mounted = variable(environment, "APPDIR");
    std::error_code none;
    return image.starts_with('/') && mounted.starts_with('/') &&
           program.starts_with(mounted.substr(0, mounted.find_last_not_of('/') + 1) + "/") &&
           std::filesystem::is_regular_file(image, none);
}

std::string itemOf(const Environment& environment, const std::string& program) {
    if (isAppImage(environment, program)) {
        return variable(environment, "APPIMAGE");
    }
    for (auto folder = parentFolder(program); folder.size() > 1; folder = parentFolder(folder)) {
        if (folder.ends_with(".app")) {
            return folder;
        }
    }
    return program;
}

} // namespace

std::string runningProgram() {
    std::error_code none;
    return std::filesystem::read_symlink("/proc/self/exe", none).string();
}

ProgramBundle::ProgramBundle(const Environment& environment, std::string program)
    : program_(std::move(program)), path_(itemOf(environment, program_)) {}

std::optional<std::string> ProgramBundle::version() const {
    const auto bytes = readWholeFile(parentFolder(program_) + "/Info.plist", kMostBytes);
    const auto list = bytes ? parsePropertyList(*bytes) : std::nullopt;
    const auto* const dictionary = list ? list->as<PropertyDictionary>() : nullptr;
    if (dictionary == nullptr) {
        return std::nullopt;
    }
    const auto found = dictionary->find("CFBundleShortVersionString");
    const auto* const text = found != dictionary->end() ? found->second.as<std::string>() : nullptr;
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

} // namespace fernwick::platform
