// The application's part in the engine's service, one operation per run, for tests that watch it from outside:
//   kind
//   check EXECUTABLE: the state's number and the old path
//   prepare EXECUTABLE FOLDER CONFIGURATION: the temporary file, and the line on the lines after it
//   restart EXECUTABLE FOLDER CONFIGURATION
//   terminate
//   administrator LINE: "done", or "refused: " and the message
//   abandon LINE FILE: the same, but everything is abandoned once the line has made the file
//   detach PIDFILE LOG EXECUTABLE FOLDER CONFIGURATION
#include "platform/linux/DetachedService.h"
#include "platform/linux/EngineService.h"
#include "platform/linux/PkexecShell.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/PosixHostEnvironment.h"

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace fernwick::platform;

ServiceProgram programAt(const std::vector<std::string>& words, std::size_t at) {
    return {words.at(at), words.at(at + 1), words.at(at + 2)};
}

int runAdministrator(CommandRunner& commands, const std::string& line) {
    const auto result = PkexecShell(commands).run(line);
    std::puts(result ? "done" : ("refused: " + result.error().message).c_str());
    return 0;
}

int abandonAdministrator(PosixCommandRunner& commands, FileSystem& files, const std::string& line,
                         const std::string& made) {
    std::jthread end([&] {
        while (!files.exists(made)) {
            std::this_thread::sleep_for(std::chrono::milliseconds{10});
        }
        commands.abandonAll();
    });
    return runAdministrator(commands, line);
}

int prepare(ServiceControl& service, const ServiceProgram& program) {
    const auto prepared = service.prepare(program, ServiceInstallation::first);
    if (!prepared) {
        std::fputs(prepared.error().description.c_str(), stderr);
        return 1;
    }
    std::printf("%s\n%s", prepared->temporaryFile.c_str(), prepared->shellLine.c_str());
    return 0;
}

int run(const std::vector<std::string>& words) {
    const ChildLauncher launcher;
    PosixCommandRunner commands(launcher);
    PosixFileSystem files;
    const PosixHostEnvironment host;
    const auto service = makeEngineService(files, commands, host);
    const auto& operation = words.at(0);
    if (operation == "kind") {
        std::puts(dynamic_cast<DetachedService*>(service.get()) != nullptr ? "detached" : "systemd");
    } else if (operation == "check") {
        const auto found = service->check(words.at(1));
        std::printf("%d %s\n", static_cast<int>(found.state), found.oldPath.c_str());
    } else if (operation == "prepare") {
        return prepare(*service, programAt(words, 1));
    } else if (operation == "restart") {
        service->restart(programAt(words, 1));
    } else if (operation == "terminate") {
        service->terminate();
    } else if (operation == "administrator") {
        return runAdministrator(commands, words.at(1));
    } else if (operation == "abandon") {
        return abandonAdministrator(commands, files, words.at(1), words.at(2));
    } else if (operation == "detach") {
        DetachedService(files, {.pidFile = words.at(1), .log = words.at(2)}).restart(programAt(words, 3));
    } else {
        return 2;
    }
    return 0;
}

} // namespace

int main(int count, char** words) {
    return run(std::vector<std::string>(words + 1, words + count));
}
