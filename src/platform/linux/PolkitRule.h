// The rule that lets one user start and stop the proxy engine's unit without a prompt (polkit(8),
// "Authorization rules"). Threads: any.
#pragma once

#include <string>
#include <string_view>

namespace fernwick::platform {

// Where the rule is installed. polkit reads it within the moment.
inline constexpr const char* kPolkitRule = "/etc/polkit-1/rules.d/50-com.fernwick.mihomo.rules";

// The text of the rule. It grants org.freedesktop.systemd1.manage-units for this one unit, and of what that
// action covers only start, stop, restart and kill: systemd tells the unit and the verb with its question since
// 226 (its NEWS), and calls KillUnit "kill". `user` is the account's name, or its number when it has none, as
// polkit's `subject.user` has it.
[[nodiscard]] std::string polkitRule(std::string_view user);

// The text as a string literal of ECMAScript. Whatever stands in it, the literal ends where it ends.
[[nodiscard]] std::string scriptString(std::string_view text);

} // namespace fernwick::platform
