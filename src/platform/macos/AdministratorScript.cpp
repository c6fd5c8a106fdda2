#include "platform/macos/AdministratorScript.h"

namespace fernwick::platform {

std::string administratorScript(std::string_view line) {
    std::string script = "do shell script \"";
    for (const char character : line) {
        if (character == '"') {
            script += '\\';
        }
        script += character;
    }
    return script + "\" with administrator privileges";
}

} // namespace fernwick::platform
