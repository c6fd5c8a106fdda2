#include "platform/linux/AutostartEntry.h"

#include "platform/posix/SystemError.h"
#include "support/Text.h"

#include <cerrno>

namespace fernwick::platform {

namespace {

// A value of type string: what would not stay as it is between the equals sign and the end of the line.
std::string stringValue(std::string_view text) {
    std::string value;
    for (const char character : text) {
        switch (character) {
        case '\\':
            value += "\\\\";
            break;
        case '\n':
            value += "\\n";
            break;
        case '\t':
            value += "\\t";
            break;
        case '\r':
            value += "\\r";
            break;
        default:
            // A blank at the start would be taken for one behind the equals sign.
            value += character == ' ' && value.empty() ? "\\s" : std::string(1, character);
        }
    }
    return value;
}

} // namespace

std::string quotedForExec(std::string_view argument) {
    std::string quoted = "\"";
    for (const char character : argument) {
        if (std::string_view("\"`$\\").contains(character)) {
            quoted += '\\';
        } else if (character == '%') {
            quoted += '%'; // or it would begin a field code
        }
        quoted += character;
    }
    return quoted + '"';
}

std::string autostartEntry(std::string_view program) {
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Fernwick\n"
           "Comment=SSH tunnels in the menu bar\n"
           "Icon=com.fernwick.Fernwick\n"
           "TryExec=" +
           stringValue(program) + "\nExec=" + stringValue(quotedForExec(program)) + " " +
           std::string(kHiddenArgument) +
           "\n"
           "Terminal=false\n"
           "StartupNotify=false\n"
           "X-GNOME-Autostart-enabled=true\n";
}

std::expected<void, std::string> AutostartEntry::enable() {
    if (!support::isValidUtf8(program_)) {
        return std::unexpected(describeError(EILSEQ));
    }
    auto done = files_.makeFolder(folder_);
    if (done) {
        done = files_.write(path_, autostartEntry(program_), kOwnerOnlyFile);
    }
    if (!done) {
        return std::unexpected(done.error().description);
    }
    return {};
}

std::expected<void, std::string> AutostartEntry::disable() {
    const auto removed = files_.remove(path_);
    if (!removed && removed.error().code != ENOENT && removed.error().code != ENOTDIR) {
        return std::unexpected(removed.error().description);
    }
    return {};
}

} // namespace fernwick::platform
