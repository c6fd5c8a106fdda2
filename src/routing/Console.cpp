#include "routing/Console.h"

#include <cstdio>
#include <string>

namespace fernwick {

void printToStandardOutput(std::string_view line) {
    const auto whole = std::string(line) + '\n';
    std::fwrite(whole.data(), 1, whole.size(), stdout);
    std::fflush(stdout);
}

} // namespace fernwick
