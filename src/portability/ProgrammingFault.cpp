#include "portability/ProgrammingFault.h"

#include <cstdlib>
#include <iostream>

namespace fernwick {

void programmingFault(std::string_view what) {
    std::cerr << "Fernwick: " << what << std::endl;
    std::abort();
}

} // namespace fernwick
