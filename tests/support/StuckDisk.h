// A disk that takes nothing: while one of these lives, fsync(2) does not return in the program that has
// StuckDisk.cpp among its sources. There the function stands in for the C library's; without a stuck disk it
// does what that does. Shared libraries keep their own. Threads: any. One at a time.
#pragma once

namespace fernwick::fakes {

class StuckDisk {
public:
    StuckDisk();
    StuckDisk(const StuckDisk&) = delete;
    StuckDisk& operator=(const StuckDisk&) = delete;
    // Releases who waits.
    ~StuckDisk();

    // Lets the disk work again.
    void release();

    // Whether someone waits for the disk.
    [[nodiscard]] bool holdsSomeone() const;

    // How often fsync(2) was called since this was made.
    [[nodiscard]] int syncs() const;
};

} // namespace fernwick::fakes
