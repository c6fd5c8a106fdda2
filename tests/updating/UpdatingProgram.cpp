// An application that installs an archive into its own place and ends, as the real one does; for the test of
// the scripts. Its arguments: the folder for temporary files, the archive, the item to replace.
#include "platform/ThreadName.h"
#include "platform/linux/LinuxUpdate.h"
#include "platform/linux/PkexecShell.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixFileItems.h"
#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/PosixHostEnvironment.h"
#include "updating/UpdateInstall.h"

#include <cstdio>
#include <thread>

namespace {

class FixedBundle final : public fernwick::platform::ApplicationBundle {
public:
    explicit FixedBundle(std::string path) : path_(std::move(path)) {}
    [[nodiscard]] std::string path() const override { return path_; }
    [[nodiscard]] std::optional<std::string> version() const override { return std::nullopt; }

private:
    std::string path_;
};

} // namespace

int main(int count, char** arguments) {
    using namespace fernwick;
    using namespace fernwick::platform;
    if (count != 4) {
        return 2;
    }
    nameThisThread("Fernwick");
    const PosixHostEnvironment host;
    const ChildLauncher launcher;
    PosixCommandRunner commands(launcher);
    PkexecShell shell(commands);
    LinuxUpdate system(host, shell);
    FixedBundle bundle(arguments[3]);
    PosixFileSystem files;
    PosixFileItems items;
    std::expected<void, std::string> done;
    // In a thread that ends, as the pool's do: the kernel kills what a thread started when the thread ends.
    std::thread([&] {
        done = installArchive({.bundle = bundle,
                               .files = files,
                               .items = items,
                               .commands = commands,
                               .system = system,
                               .temporaryFolder = arguments[1]},
                              arguments[2]);
    }).join();
    std::puts(done ? "started" : done.error().c_str());
    std::fflush(stdout);
    (void)std::getchar(); // the application ends when it is told to
    commands.abandonAll();
    return done ? 0 : 1;
}
