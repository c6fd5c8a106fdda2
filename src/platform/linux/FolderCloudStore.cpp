#include "platform/linux/FolderCloudStore.h"

#include "platform/linux/CloudFolder.h"
#include "platform/linux/CloudMemory.h"

#include <atomic>
#include <mutex>
#include <set>
#include <utility>

namespace fernwick::platform {

namespace {

// When a folder in which things happen is to be looked at.
class QuietTime {
public:
    // Something happened. True when the time has to be started.
    [[nodiscard]] bool disturb() {
        disturbed_ = running_;
        return !std::exchange(running_, true);
    }

    // The time has passed. True when it is over; otherwise it has to be started again.
    [[nodiscard]] bool pass() {
        if (std::exchange(disturbed_, false) && ++turns_ < kMostTurns) {
            return false;
        }
        running_ = false;
        turns_ = 0;
        return true;
    }

private:
    static constexpr int kMostTurns = 10;

    bool running_ = false;
    bool disturbed_ = false; // since the time was started
    int turns_ = 0;
};

} // namespace

// Outlives the store for as long as the disk holds a thread that works for it.
class FolderCloudStore::State : public std::enable_shared_from_this<State> {
public:
    State(Dispatch& dispatch, std::string path, support::Weak<FolderCloudStore> store)
        : store_(std::move(store)), folder_(std::move(path)), dispatch_(&dispatch) {}

    // The store is gone, and the dispatch may be.
    void close() {
        const std::lock_guard lock(mutex_);
        dispatch_ = nullptr;
    }

    [[nodiscard]] bool ask() {
        const bool there = folder_.canBeListed();
        signedIn_ = there;
        return there;
    }

    [[nodiscard]] bool wasSignedIn() const { return signedIn_; }

    [[nodiscard]] std::optional<Data> data(std::string_view key) const {
        const std::lock_guard lock(mutex_);
        return memory_.data(key);
    }

    void set(std::string_view key, Data value) {
        const std::lock_guard lock(mutex_);
        memory_.set(key, std::move(value));
    }

    // Looks at the folder, after writing to it what is to be written if `writing`. False when there is no
    // folder or something could not be written.
    [[nodiscard]] bool look(bool writing) {
        const std::lock_guard disk(disk_);
        if (!ask()) {
            const std::lock_guard lock(mutex_);
            memory_.beginWithNothing();
            return false;
        }
        const bool written = !writing || write();
        return read() && written;
    }

    // The same in the background. Requests that come while the disk is busy are one.
    void request(bool writing) {
        const std::lock_guard lock(mutex_);
        wanted_ = true;
        writingWanted_ = writingWanted_ || writing;
        if (dispatch_ != nullptr && !std::exchange(busy_, true)) {
            dispatch_->global(Priority::userInitiated, [self = shared_from_this()] { self->work(); });
        }
    }

    void take(const FolderNews& news) {
        const std::lock_guard lock(mutex_);
        bool changed = news.everything;
        if (news.everything) {
            beingWritten_.clear(); // who still writes will be heard of
        }
        for (const auto& [name, atRest] : news.files) {
            if (!isCloudKey(name)) {
                continue;
            }
            if (atRest) {
                beingWritten_.erase(name);
                changed = true;
            } else {
                beingWritten_.insert(name);
            }
        }
        if (changed && dispatch_ != nullptr && quiet_.disturb()) {
            waitForQuiet();
        }
    }

private:
    // Called with the lock held.
    void waitForQuiet() {
        dispatch_->globalAfter(Priority::normal, kQuiet, [self = shared_from_this()] { self->quietPassed(); });
    }

    void quietPassed() {
        {
            const std::lock_guard lock(mutex_);
            if (dispatch_ == nullptr) {
                return;
            }
            if (!quiet_.pass()) {
                waitForQuiet();
                return;
            }
        }
        request(false);
    }

    // Does what was requested, in the background.
    void work() {
        while (true) {
            bool writing = false;
            {
                const std::lock_guard lock(mutex_);
                if (!std::exchange(wanted_, false) || dispatch_ == nullptr) {
                    busy_ = false;
                    return;
                }
                writing = std::exchange(writingWanted_, false);
            }
            static_cast<void>(look(writing)); // nobody asked how it went
        }
    }

    // Called with the disk held, as is read().
    [[nodiscard]] bool write() {
        std::vector<std::pair<std::string, Data>> pending;
        {
            const std::lock_guard lock(mutex_);
            pending = memory_.pending();
        }
        bool all = true;
        for (const auto& [key, value] : pending) {
            if (folder_.write(key, value) != 0) {
                all = false;
                continue;
            }
            const std::lock_guard lock(mutex_);
            memory_.written(key, value);
        }
        return all;
    }

    [[nodiscard]] bool read() {
        std::set<std::string, std::less<>> skipped;
        {
            const std::lock_guard lock(mutex_);
            skipped = beingWritten_;
        }
        auto files = folder_.read(skipped);
        if (!files) {
            return false;
        }
        const std::lock_guard lock(mutex_);
        files->unknown.insert(beingWritten_.begin(), beingWritten_.end()); // those that began meanwhile
        if (auto changed = memory_.take(*files); !changed.empty() && dispatch_ != nullptr) {
            dispatch_->main([store = store_, changed = CloudChange(std::move(changed))] {
                if (const auto* there = store.get()) {
                    there->changed_.emit(changed);
                }
            });
        }
        return true;
    }

    const support::Weak<FolderCloudStore> store_;
    std::atomic<bool> signedIn_ = false;
    std::mutex disk_;          // held by whoever uses what follows; taken before the other
    CloudFolder folder_;       // but anybody may ask whether it can be listed
    mutable std::mutex mutex_; // guards what follows; nobody who holds it waits for the disk
    Dispatch* dispatch_;       // null when the store is gone
    CloudMemory memory_;
    std::set<std::string, std::less<>> beingWritten_; // keys whose files somebody is writing to
    QuietTime quiet_;
    bool busy_ = false; // a background thread does, or is about to do, what is wanted
    bool wanted_ = false;
    bool writingWanted_ = false;
};

FolderCloudStore::FolderCloudStore(Dispatch& dispatch, const HostEnvironment& host)
    : path_(host.supportFolder() + "/Cloud") {
    state_ = std::make_shared<State>(dispatch, path_, weak_.weak());
}

FolderCloudStore::~FolderCloudStore() {
    watch_.reset();
    state_->close();
}

// Threads that are in one of these hold the state: the disk may let them go only after the store.

bool FolderCloudStore::isSignedIn() {
    const auto state = state_;
    return state->ask();
}

bool FolderCloudStore::synchronize() {
    const auto state = state_;
    return state->look(true);
}

bool FolderCloudStore::wasSignedIn() const {
    return state_->wasSignedIn();
}

std::optional<Data> FolderCloudStore::data(std::string_view key) const {
    return state_->data(key);
}

void FolderCloudStore::set(std::string_view key, Data value) {
    if (isCloudKey(key)) {
        state_->set(key, std::move(value));
    }
}

void FolderCloudStore::requestSynchronize() {
    state_->request(true);
}

support::Subscription FolderCloudStore::changedExternally(std::function<void(const CloudChange&)> handler) {
    if (!watch_) {
        watch_ =
            std::make_unique<FolderWatch>(path_, [state = state_](const auto& news) { state->take(news); });
    }
    return changed_.connect(std::move(handler));
}

} // namespace fernwick::platform
