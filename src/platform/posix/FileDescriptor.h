// An open file descriptor with one owner, who closes it.
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace fernwick::platform {

class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            reset();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { reset(); }

    // The number, or -1 when nothing is open.
    [[nodiscard]] int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

    void reset() {
        if (const int number = std::exchange(number_, -1); number >= 0) {
            ::close(number);
        }
    }

    // Closes it, and answers 0 or the error: some file systems tell only here that the disk was full.
    [[nodiscard]] int close() { return ::close(std::exchange(number_, -1)) == 0 ? 0 : errno; }

private:
    int number_ = -1;
};

} // namespace fernwick::platform
