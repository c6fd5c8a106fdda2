#include "platform/linux/PolkitRule.h"

#include "platform/linux/SystemdUnit.h"

#include <fmt/format.h>

namespace fernwick::platform {

std::string polkitRule(std::string_view user) {
    return fmt::format(R"(// Installed by Fernwick: one user starts and stops its proxy engine without a prompt.
polkit.addRule(function(action, subject) {{
    if (action.id == "org.freedesktop.systemd1.manage-units" &&
        action.lookup("unit") == {} &&
        ["start", "stop", "restart", "kill"].indexOf(action.lookup("verb")) >= 0 &&
        subject.user == {}) {{
        return polkit.Result.YES;
    }}
    return polkit.Result.NOT_HANDLED;
}});
)",
                       scriptString(kSystemdUnitName), scriptString(user));
}

std::string scriptString(std::string_view text) {
    std::string literal = "\"";
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const auto three = text.substr(at, 3);
        if (three == "\u2028" || three == "\u2029") { // line ends, by the language's older editions
            literal += three == "\u2028" ? "\\u2028" : "\\u2029";
            at += 2;
        } else if (byte < 0x20 || byte == 0x7f || byte == '"' || byte == '\\') {
            literal += fmt::format("\\u{:04x}", byte);
        } else {
            literal += text[at];
        }
    }
    return literal + '"';
}

} // namespace fernwick::platform
