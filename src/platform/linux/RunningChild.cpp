#include "platform/linux/RunningChild.h"

#include "platform/linux/PidFd.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace fernwick::platform {

RunningChild::RunningChild(LaunchedChild child, ProcessHandlers handlers)
    : pid_(child.pid),
      handlers_(std::move(handlers)),
      process_(std::move(child.process)),
      standardOutput_(std::move(child.standardOutput)),
      standardError_(std::move(child.standardError)) {}

bool RunningChild::isRunning() const {
    const std::lock_guard lock(mutex_);
    return process_ && !hasEnded(process_);
}

void RunningChild::terminate() const {
    const std::lock_guard lock(mutex_);
    if (process_) {
        signalProcess(process_, SIGTERM);
    }
}

bool RunningChild::deliver(std::string& buffer) {
    const auto wanted = isReaped() ? std::min(unread_, buffer.size()) : buffer.size();
    ssize_t count = 0;
    do {
        count = read(standardError_.get(), buffer.data(), wanted);
    } while (count < 0 && errno == EINTR);
    if (count <= 0) {
        unread_ = 0;
        return false;
    }
    const auto size = static_cast<std::size_t>(count);
    unread_ -= std::min(unread_, size);
    if (handlers_.standardError) {
        handlers_.standardError(buffer.substr(0, size));
    }
    return true;
}

void RunningChild::endGroup() const {
    kill(-pid_, SIGTERM); // nothing happens when nobody is left
}

void RunningChild::reap() {
    endGroup();
    status_ = reapProcess(process_);
    int held = 0;
    if (standardError_ && ioctl(standardError_.get(), FIONREAD, &held) == 0) {
        unread_ = static_cast<std::size_t>(std::max(held, 0));
    }
}

void RunningChild::finish() {
    {
        const std::lock_guard lock(mutex_);
        process_.reset();
    }
    standardOutput_.reset();
    standardError_.reset();
    const auto handlers = std::exchange(handlers_, {});
    if (handlers.exit) {
        handlers.exit(status_.value_or(-1));
    }
}

} // namespace fernwick::platform
