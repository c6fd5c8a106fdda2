#include "platform/posix/AccountName.h"

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace fernwick::platform {

std::string accountName() {
    passwd account{};
    passwd* found = nullptr;
    std::vector<char> buffer(4096);
    int error = 0;
    while ((error = getpwuid_r(getuid(), &account, buffer.data(), buffer.size(), &found)) == ERANGE) {
        buffer.resize(buffer.size() * 2);
    }
    return error == 0 && found != nullptr ? account.pw_name : std::to_string(getuid());
}

} // namespace fernwick::platform
