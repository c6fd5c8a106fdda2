// What the tests of all services share: a program to run, and a table of what a check finds.
#pragma once

#include "platform/ServiceControl.h"
#include "support/FakeCommandRunner.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"

#include <optional>
#include <ostream>
#include <string>

namespace fernwick::platform {

inline const ServiceProgram kSampleProgram{"/opt/Fernwick/mihomo", "/home/anna/Fernwick/clash",
                                           "/home/anna/Fernwick/clash/config.yaml"};

inline void PrintTo(const ServiceCheck& check, std::ostream* out) {
    *out << "state " << static_cast<int>(check.state) << ", old path '" << check.oldPath << "'";
}

struct CheckRow {
    const char* name;
    std::optional<std::string> text; // absent: no file
    ServiceCheck expected;
    bool mayRead = true;
    bool canRead = true; // where it may
};

// Puts the file of a row there.
inline void place(const CheckRow& row, const std::string& path, fakes::FakeFileSystem& files) {
    if (row.text) {
        files.files[path] = {*row.text, 0644};
    }
    if (!row.mayRead) {
        files.unreadable.insert(path);
    }
    if (!row.canRead) {
        files.broken.insert(path);
    }
}

} // namespace fernwick::platform
