#include "support/StuckDisk.h"

#include <condition_variable>
#include <mutex>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct State {
    std::mutex mutex; // guards what follows
    std::condition_variable released;
    bool isStuck = false;
    int waiting = 0;
    int syncs = 0;
};

State& state() {
    static State state; // as global as the function that it belongs to
    return state;
}

} // namespace

extern "C" int fsync(int descriptor) {
    auto& disk = state();
    {
        std::unique_lock lock(disk.mutex);
        ++disk.syncs;
        ++disk.waiting;
        disk.released.wait(lock, [&] { return !disk.isStuck; });
        --disk.waiting;
    }
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

namespace fernwick::fakes {

StuckDisk::StuckDisk() {
    auto& disk = state();
    const std::lock_guard lock(disk.mutex);
    disk.isStuck = true;
    disk.syncs = 0;
}

StuckDisk::~StuckDisk() {
    release();
}

void StuckDisk::release() {
    auto& disk = state();
    const std::lock_guard lock(disk.mutex);
    disk.isStuck = false;
    disk.released.notify_all();
}

bool StuckDisk::holdsSomeone() const {
    auto& disk = state();
    const std::lock_guard lock(disk.mutex);
    return disk.waiting > 0;
}

int StuckDisk::syncs() const {
    auto& disk = state();
    const std::lock_guard lock(disk.mutex);
    return disk.syncs;
}

} // namespace fernwick::fakes
