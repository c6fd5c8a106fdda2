// When a rule of the proxy auto-config script applies: an expression in JavaScript, true for any of the rule's
// hosts or ports. Threads: any.
#pragma once

#include "routing/AppRule.h"

#include <string>

namespace fernwick {

// Appends the expressions of the rule's hosts, then those of its ports, with "||" between them. An element that
// cannot be read gives none; without any, nothing is appended.
void appendCondition(std::string& text, const AppRule& rule);

} // namespace fernwick
