// One line of a tunnel's log. Kept in memory only.
#pragma once

#include "support/Date.h"
#include "support/Uuid.h"

#include <string>

namespace fernwick {

enum class LogLevel { info, success, warning, error };

struct LogEntry {
    support::Uuid id; // fresh for every line
    support::Date timestamp;
    LogLevel level = LogLevel::info;
    std::string message;

    bool operator==(const LogEntry&) const = default;
};

} // namespace fernwick
