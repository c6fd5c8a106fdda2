#include "platform/linux/ProcessStart.h"

#include <fstream>
#include <sstream>
#include <string>

namespace fernwick::platform {

std::optional<std::uint64_t> processStart(int pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    // The program's name, the second field, may hold anything, line ends and parentheses too; what follows its
    // last parenthesis is numbers and one letter.
    std::getline(file, line, '\0');
    const auto name = line.rfind(')');
    if (name == std::string::npos) {
        return std::nullopt;
    }
    std::istringstream fields(line.substr(name + 1));
    char state = '\0';
    fields >> state;
    constexpr int kFieldsBetween = 18; // the state is the third field, the start the twenty-second
    std::string skipped;
    for (int field = 0; field < kFieldsBetween; ++field) {
        fields >> skipped;
    }
    std::uint64_t start = 0;
    return fields >> start && state != 'Z' && state != 'X' ? std::optional(start) : std::nullopt;
}

} // namespace fernwick::platform
