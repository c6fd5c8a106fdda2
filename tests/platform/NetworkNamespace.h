// A network of a test's own: the calling thread and what it starts see no other interfaces (namespaces(7)).
// There is a cable from `near` to `far`, whose other end a test can pull out. Needs root.
#pragma once

#include "TestProgram.h"
#include "support/TemporaryFolder.h"

#include <fcntl.h>
#include <sched.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace fernwick::platform {

class NetworkNamespace {
public:
    NetworkNamespace() : home_(open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC)) {
        if (!home_ || unshare(CLONE_NEWNET) != 0) {
            throw std::system_error(errno, std::system_category(), "no network namespace can be made (root?)");
        }
        ip("link set lo up");
        ip("link add near type veth peer name far");
        ip("link set far up");
        ip("link set near up");
        ip("addr add 192.0.2.1/24 dev near");
        ip("addr add 2001:db8::1/64 dev near nodad");
    }
    NetworkNamespace(const NetworkNamespace&) = delete;
    NetworkNamespace& operator=(const NetworkNamespace&) = delete;
    ~NetworkNamespace() { setns(home_.get(), CLONE_NEWNET); }

    // Runs ip(8), with the words of a line.
    void ip(const std::string& line) const {
        std::istringstream words(line);
        std::vector<std::string> arguments;
        for (std::string word; words >> word;) {
            arguments.push_back(word);
        }
        static_cast<void>(outputOf("/sbin/ip", arguments));
    }

    // Runs many lines at once.
    void ipBatch(const std::string& lines) const {
        const fakes::TemporaryFolder folder;
        folder.write("batch", lines);
        ip("-batch " + (folder / "batch"));
    }

private:
    FileDescriptor home_;
};

} // namespace fernwick::platform
