// Reads a desktop entry: the file by which an application tells the desktop its name and how it is run (Desktop
// Entry Specification 1.5, freedesktop.org). Pure: knows no file and no environment. Threads: any.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

struct DesktopEntry {
    std::string name;                 // in the language that was asked for; may be empty; always UTF-8
    std::string icon;                 // a name in the icon theme, or an absolute path; may be empty
    std::string tryExec;              // a program without which the entry is to be left out; may be empty
    std::vector<std::string> command; // the program and its arguments, field codes left out; may be empty
    bool isShown = false;             // an application that is neither hidden nor kept out of menus

    bool operator==(const DesktopEntry&) const = default;
};

// The locales, best first, whose translations of a key fit a locale written as lang_COUNTRY.ENCODING@MODIFIER;
// parts may be missing. None for "C" and "POSIX".
[[nodiscard]] std::vector<std::string> localesFitting(std::string_view locale);

// The entry that the bytes hold, named in the best of the locales that it is translated to. Absent when there
// is no group "Desktop Entry". Lines that are none of the format's are passed over.
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(std::string_view bytes,
                                                            const std::vector<std::string>& locales);

} // namespace fernwick::platform
