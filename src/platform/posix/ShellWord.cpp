#include "platform/posix/ShellWord.h"

namespace fernwick::platform {

std::string shellWord(std::string_view text) {
    std::string word = "'";
    for (const char character : text) {
        if (character == '\'') {
            word += "'\\''";
        } else {
            word += character;
        }
    }
    return word + '\'';
}

} // namespace fernwick::platform
