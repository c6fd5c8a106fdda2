// The engine as a process of its own, with a real one: a program that only waits.
#include "ServiceChecks.h"
#include "TestProgram.h"
#include "platform/linux/DetachedService.h"
#include "platform/linux/ProcessStart.h"
#include "platform/posix/PosixFileSystem.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

namespace fernwick::platform {

namespace {

using namespace std::chrono_literals;

// Writes what it was given to its output, with its process id, and waits.
constexpr const char* kWaiting = "#!/bin/sh\necho \"$$ $*\"\necho trouble >&2\nexec /bin/sleep 1000\n";
// The same, deaf to SIGTERM.
constexpr const char* kDeaf = "#!/bin/sh\ntrap '' TERM\necho \"$$ $*\"\nexec /bin/sleep 1000\n";

class DetachedServiceTest : public testing::Test {
protected:
    explicit DetachedServiceTest(const char* script = kWaiting, std::chrono::milliseconds patience = 10s)
        : service(files, {folder / "pid", folder / "log", patience}) {
        folder.write("mihomo", script);
        std::filesystem::permissions(program.executable, std::filesystem::perms::owner_all);
    }
    ~DetachedServiceTest() override {
        if (const int pid = running(); pid > 0) {
            kill(pid, SIGKILL);
        }
    }

    // The process of the pid file while it lives, else 0.
    [[nodiscard]] int running() const {
        std::istringstream text(folder.read("pid"));
        int pid = 0;
        std::uint64_t start = 0;
        text >> pid >> start;
        return pid > 0 && processStart(pid) == start ? pid : 0;
    }

    // Waits until the engine has written its lines.
    [[nodiscard]] bool wrote(const std::string& lines) const {
        return fakes::waitUntil([&] { return folder.read("log") == lines; });
    }

    [[nodiscard]] std::string startLine(int pid) const {
        return std::to_string(pid) + " -d " + program.folder + " -f " + program.configuration + "\n";
    }

    fakes::TemporaryFolder folder;
    ServiceProgram program{folder / "mihomo", folder / "a folder", folder / "a folder/config.yaml"};
    PosixFileSystem files;
    DetachedService service;
};

class DeafServiceTest : public DetachedServiceTest {
protected:
    DeafServiceTest() : DetachedServiceTest(kDeaf, 50ms) {}
};

// A field of /proc/PID/stat, counted from the state (proc(5)).
long statField(int pid, int number) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    std::getline(file, line);
    std::istringstream fields(line.substr(line.rfind(')') + 1));
    std::string field;
    for (int at = 0; at <= number; ++at) {
        fields >> field;
    }
    return std::stol(field);
}

std::string linkOf(int pid, const std::string& name) {
    return std::filesystem::read_symlink("/proc/" + std::to_string(pid) + "/" + name).string();
}

std::string numbersOfDescriptors(int pid) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/fd")) {
        names.insert(entry.path().filename().string());
    }
    std::string numbers;
    for (const auto& name : names) {
        numbers += name + ' ';
    }
    return numbers;
}

bool hasNoChild() {
    return waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD;
}

} // namespace

TEST_F(DetachedServiceTest, IsAlwaysReadyAndNeedsNoInstallation) {
    EXPECT_EQ(service.check("/nowhere"), ServiceCheck{ServiceState::ready});
    const auto prepared = service.prepare(program, ServiceInstallation::again);
    ASSERT_TRUE(prepared);
    EXPECT_EQ(prepared->temporaryFile, "");
    EXPECT_EQ(outputOf("/bin/sh", {"-c", prepared->shellLine}), "");
}

TEST_F(DetachedServiceTest, StartsTheProgramWithItsFilesAndOutput) {
    service.restart(program);
    const int pid = running();
    ASSERT_GT(pid, 0);
    EXPECT_TRUE(wrote(startLine(pid) + "trouble\n"));
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(folder / "pid").permissions(), perms::owner_read | perms::owner_write);
}

TEST_F(DetachedServiceTest, ProgramIsAloneInItsSession) {
    service.restart(program);
    const int pid = running();
    ASSERT_GT(pid, 0);
    // The shell has come to its last line, and the loader of the program there has closed its libraries.
    EXPECT_TRUE(fakes::waitUntil([&] {
        return linkOf(pid, "exe").ends_with("sleep") && numbersOfDescriptors(pid) == "0 1 2 ";
    })) << numbersOfDescriptors(pid);
    EXPECT_NE(statField(pid, 1), getpid());  // the parent
    EXPECT_NE(statField(pid, 3), getsid(0)); // the session
    EXPECT_EQ(statField(pid, 4), 0);         // no terminal
    EXPECT_EQ(linkOf(pid, "cwd"), "/");
    EXPECT_EQ(linkOf(pid, "fd/0"), "/dev/null");
    EXPECT_EQ(linkOf(pid, "fd/1"), folder / "log");
    EXPECT_EQ(linkOf(pid, "fd/2"), folder / "log");
    EXPECT_TRUE(hasNoChild());
}

TEST_F(DetachedServiceTest, ProgramOutlivesTheThreadThatStartedIt) {
    std::thread([this] { service.restart(program); }).join();
    const int pid = running();
    ASSERT_GT(pid, 0);
    EXPECT_TRUE(fakes::staysTrue([&] { return running() == pid; }));
}

TEST_F(DetachedServiceTest, ProgramOutlivesTheApplicationAndTheNextOneEndsIt) {
    TestProgram application(
        FERNWICK_SERVICE_PROGRAM,
        {"detach", folder / "pid", folder / "log", program.executable, program.folder, program.configuration});
    ASSERT_EQ(application.wait(), 0);
    const int pid = running();
    ASSERT_GT(pid, 0);
    EXPECT_TRUE(wrote(startLine(pid) + "trouble\n"));
    service.terminate();
    EXPECT_TRUE(fakes::waitUntil([&] { return running() == 0; }));
}

TEST_F(DetachedServiceTest, SecondRestartLeavesOne) {
    service.restart(program);
    const int first = running();
    ASSERT_GT(first, 0);
    EXPECT_TRUE(wrote(startLine(first) + "trouble\n"));
    service.restart(program);
    const int second = running();
    ASSERT_GT(second, 0);
    EXPECT_NE(second, first);
    EXPECT_EQ(processStart(first), std::nullopt);
    EXPECT_TRUE(wrote(startLine(first) + "trouble\n" + startLine(second) + "trouble\n")); // appended
}

TEST_F(DetachedServiceTest, TerminateEndsItAndAgainIsNothing) {
    service.terminate(); // before there was any
    service.restart(program);
    ASSERT_GT(running(), 0);
    service.terminate();
    EXPECT_TRUE(fakes::waitUntil([&] { return running() == 0; }));
    service.terminate();
    service.restart(program);
    EXPECT_GT(running(), 0);
}

TEST_F(DetachedServiceTest, ProcessThatGotTheNumberIsSpared) {
    TestProgram stranger("/bin/sleep", {"1000"});
    const int pid = stranger.pid();
    const auto start = processStart(pid);
    ASSERT_TRUE(start);
    for (const auto& text : {std::to_string(pid) + " " + std::to_string(*start + 1) + "\n",
                             std::to_string(pid) + " " + std::to_string(*start), std::to_string(pid) + "\n",
                             std::to_string(pid)}) {
        folder.write("pid", text);
        service.terminate();
    }
    service.restart(program);
    EXPECT_TRUE(fakes::staysTrue([&] { return processStart(pid) == start; }));
    EXPECT_GT(running(), 0);
    EXPECT_NE(running(), pid);
}

TEST_F(DetachedServiceTest, GarbageInThePidFileIsNothing) {
    const auto own = " " + std::to_string(processStart(getpid()).value_or(0)) + "\n";
    for (const auto& text : {std::string(), std::string("garbage\n"), std::string(100'000, '9'), "-1" + own,
                             "0" + own, "1" + own, "99999999999999" + own, std::string("\0\0 \0", 4)}) {
        folder.write("pid", text);
        service.terminate();
    }
    service.restart(program);
    EXPECT_GT(running(), 0);
}

TEST_F(DetachedServiceTest, MissingExecutableIsSilent) {
    program.executable = folder / "nothing";
    service.restart(program);
    EXPECT_FALSE(std::filesystem::exists(folder / "pid"));
    EXPECT_EQ(folder.read("log"), "");
    EXPECT_TRUE(hasNoChild());
    program.executable = std::string("/bin/sl\0eep", 11);
    service.restart(program);
    EXPECT_FALSE(std::filesystem::exists(folder / "pid"));
}

TEST_F(DetachedServiceTest, OutputNeverFollowsALinkNorWaitsForAPipe) {
    folder.write("precious", "kept");
    std::filesystem::create_symlink(folder / "precious", folder / "log");
    service.restart(program);
    const int first = running();
    ASSERT_GT(first, 0);
    EXPECT_EQ(linkOf(first, "fd/1"), "/dev/null");
    EXPECT_EQ(folder.read("precious"), "kept");
    std::filesystem::remove(folder / "log");
    ASSERT_EQ(mkfifo((folder / "log").c_str(), 0600), 0);
    service.restart(program);
    ASSERT_GT(running(), 0);
    EXPECT_EQ(linkOf(running(), "fd/1"), "/dev/null");
}

TEST_F(DetachedServiceTest, EngineThatNobodyCouldFindAgainIsEnded) {
    folder.write("mihomo", "#!/bin/sh\necho $$ > '" + (folder / "number") + "'\nexec /bin/sleep 1000\n");
    DetachedService lost(files, {.pidFile = folder / "no folder/pid", .log = folder / "log"});
    lost.restart(program); // returns when the engine has gone, whether it came to write its number or not
    const auto number = folder.read("number");
    EXPECT_TRUE(number.empty() || processStart(std::stoi(number)) == std::nullopt) << number;
    EXPECT_TRUE(hasNoChild());
}

TEST_F(DeafServiceTest, IsKilledWhenItDoesNotEnd) {
    service.restart(program);
    const int first = running();
    ASSERT_GT(first, 0);
    EXPECT_TRUE(wrote(startLine(first)));
    service.restart(program);
    EXPECT_EQ(processStart(first), std::nullopt);
    EXPECT_GT(running(), 0);
}

TEST(ProcessStart, IsKnownOfTheLivingOnly) {
    EXPECT_NE(processStart(getpid()), std::nullopt);
    EXPECT_EQ(processStart(-1), std::nullopt);
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    EXPECT_TRUE(fakes::waitUntil([&] { return processStart(child) == std::nullopt; })); // not reaped yet
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
}

} // namespace fernwick::platform
