// URLs as text (RFC 3986): whether one is valid, and the name of the file that it leads to.
// Threads: any.
#pragma once

#include <string>
#include <string_view>

namespace fernwick {

// Whether the text is a URI reference by the grammar of RFC 3986: it is not empty, has no character that must
// be written in percent form, each percent sign begins such a form, and a port is a number. A path alone is one
// too, though nothing can be fetched from it.
[[nodiscard]] bool isValidUrl(std::string_view text);

// The last component of a valid URL's path, percent forms decoded, as NSURL.lastPathComponent has it: a slash
// at the end does not count, query and fragment are no part of the path. Empty when the path is, and "/" for
// the root.
[[nodiscard]] std::string lastPathComponent(std::string_view url);

// The name that an archive gets among the temporary files: the last path component, or "Fernwick_Update.zip"
// when there is none. The latter also for what names no file of its own there, so that a server cannot choose
// the folder: "/", ".", "..", a decoded slash or NUL, and bytes that are no UTF-8.
[[nodiscard]] std::string archiveName(std::string_view url);

} // namespace fernwick
