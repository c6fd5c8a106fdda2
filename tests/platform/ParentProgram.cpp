// An application that launches one child, prints its process id and then only waits to be killed.
#include "platform/posix/PosixProcesses.h"
#include "support/FakeDispatch.h"

#include <cstdio>
#include <unistd.h>

int main() {
    using namespace fernwick;
    fakes::FakeDispatch dispatch;
    const platform::ChildLauncher launcher;
    platform::PosixProcesses processes(dispatch, launcher);
    const auto child = processes.makeChild();
    if (!child->launch({"/bin/sleep", {"1000"}, {}}, {})) {
        return 1;
    }
    std::printf("%d\n", child->pid());
    std::fflush(stdout);
    while (true) {
        pause();
    }
}
