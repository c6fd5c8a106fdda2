#include "support/StandardOutput.h"

#include <cstdio>
#include <string>

namespace fernwick::support {

void printLine(std::string_view line) {
    std::string whole(line);
    whole += '\n';
    // One call, so that lines of other threads do not fall into this one.
    std::fwrite(whole.data(), 1, whole.size(), stdout);
    std::fflush(stdout);
}

} // namespace fernwick::support
