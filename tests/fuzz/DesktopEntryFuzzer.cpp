// Desktop entries as others wrote them, in a locale that the first line gives. What is read must be text, be
// the same a second time, and lead to a program or to none, but never on for ever.
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/LaunchedProgram.h"
#include "support/Text.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace fernwick;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto locales = platform::localesFitting(text.substr(0, text.find('\n')));
    const auto entry = platform::parseDesktopEntry(text, locales);
    if (entry != platform::parseDesktopEntry(text, locales)) {
        std::abort();
    }
    if (!entry) {
        return 0;
    }
    const auto launched = platform::launchedProgram(entry->command);
    if (!support::isValidUtf8(entry->name) || (launched && launched->program.empty())) {
        std::abort();
    }
    return 0;
}
