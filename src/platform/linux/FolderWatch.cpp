#include "platform/linux/FolderWatch.h"

#include "platform/ThreadName.h"
#include "platform/linux/InotifyWatch.h"
#include "platform/posix/SystemError.h"

#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <thread>
#include <utility>

namespace fernwick::platform {

class FolderWatch::State {
public:
    State(std::string path, Handler handler)
        : path_(std::move(path)), handler_(std::move(handler)), stop_(eventfd(0, EFD_CLOEXEC)) {
        if (!stop_) {
            tellError(errno);
        }
    }

    // What the thread does.
    void run() {
        nameThisThread("cloud folder");
        while (watchOnce()) {
        }
        const std::lock_guard lock(mutex_);
        ended_ = true;
        left_.notify_all();
    }

    [[nodiscard]] bool canStop() const { return static_cast<bool>(stop_); }

    void end() {
        std::unique_lock lock(mutex_);
        closed_ = true;
        eventfd_write(stop_.get(), 1);
        left_.wait_for(lock, kPatience, [&] { return ended_; });
    }

private:
    void tellError(int code) {
        if (std::exchange(toldError_, code) != code) {
            const auto line = "[CloudStore] " + path_ + " cannot be watched: " + describeError(code) + "\n";
            std::fputs(line.c_str(), stderr);
        }
    }

    // Watches until the folder comes or goes. False when the end has come, or there is nothing to watch by.
    [[nodiscard]] bool watchOnce() {
        InotifyWatch watch(path_);
        if (watch.error() != 0) {
            tellError(watch.error());
        }
        if (watch.descriptor() < 0) {
            return false;
        }
        FolderNews news{.everything = true, .files = {}};
        do {
            if (!tell(news) || !waitForNews(watch.descriptor())) {
                return false;
            }
            news = watch.read();
        } while (!news.everything);
        return true;
    }

    // False when the end has come.
    [[nodiscard]] bool waitForNews(int inotify) const {
        std::array<pollfd, 2> watched{{{inotify, POLLIN, 0}, {stop_.get(), POLLIN, 0}}};
        while (poll(watched.data(), watched.size(), -1) < 0 && errno == EINTR) {
        }
        return watched[1].revents == 0;
    }

    // False when nobody listens any more.
    [[nodiscard]] bool tell(const FolderNews& news) {
        const std::lock_guard lock(mutex_);
        if (!closed_) {
            handler_(news);
        }
        return !closed_;
    }

    const std::string path_;
    const Handler handler_;
    const FileDescriptor stop_;
    int toldError_ = 0; // used by the thread once it runs
    std::mutex mutex_;  // guards what follows
    std::condition_variable left_;
    bool closed_ = false;
    bool ended_ = false;
};

FolderWatch::FolderWatch(std::string path, Handler handler)
    : state_(std::make_shared<State>(std::move(path), std::move(handler))) {
    if (!state_->canStop()) {
        state_.reset();
        return;
    }
    std::thread([state = state_] { state->run(); }).detach(); // the destructor waits for its last words
}

FolderWatch::~FolderWatch() {
    if (state_) {
        state_->end();
    }
}

} // namespace fernwick::platform
