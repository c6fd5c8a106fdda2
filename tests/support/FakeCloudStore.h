// A shared store in memory, with the other machines' side of it under a test's command.
// Threads: as CloudStore says; what a test commands, on its own thread.
#pragma once

#include "platform/CloudStore.h"
#include "platform/Dispatch.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fernwick::fakes {

class FakeCloudStore final : public platform::CloudStore {
public:
    // Tells changes on the dispatch's main queue. The dispatch outlives the store.
    explicit FakeCloudStore(platform::Dispatch& dispatch) : dispatch_(dispatch) {}

    [[nodiscard]] bool isSignedIn() override {
        const std::lock_guard lock(mutex_);
        ++questions_;
        found_ = account_;
        return found_;
    }
    [[nodiscard]] bool wasSignedIn() const override {
        const std::lock_guard lock(mutex_);
        return found_;
    }
    [[nodiscard]] std::optional<platform::Data> data(std::string_view key) const override {
        const std::lock_guard lock(mutex_);
        const auto value = memory_.find(key);
        return value != memory_.end() ? std::optional(value->second) : std::nullopt;
    }
    void set(std::string_view key, platform::Data value) override {
        const std::lock_guard lock(mutex_);
        memory_.insert_or_assign(std::string(key), std::move(value));
        unsent_.emplace(key);
    }
    [[nodiscard]] bool synchronize() override {
        std::vector<std::string> changed;
        {
            const std::lock_guard lock(mutex_);
            ++synchronizations_;
            if (!account_ || failing_) {
                return false;
            }
            for (const auto& key : std::exchange(unsent_, {})) {
                remote_.insert_or_assign(key, memory_.at(key));
            }
            for (const auto& [key, value] : remote_) {
                const auto known = memory_.find(key);
                if (known == memory_.end() || known->second != value) {
                    memory_.insert_or_assign(key, value);
                    changed.push_back(key);
                }
            }
        }
        if (!changed.empty()) {
            tell(std::move(changed));
        }
        return true;
    }
    void requestSynchronize() override {
        dispatch_.global(platform::Priority::normal, [this] { (void)synchronize(); });
    }
    [[nodiscard]] support::Subscription
    changedExternally(std::function<void(const platform::CloudChange&)> handler) override {
        ++listeners_;
        return handlers_->connect(std::move(handler));
    }

    // There is an account from now on, or none.
    void signIn(bool account = true) {
        const std::lock_guard lock(mutex_);
        account_ = account;
    }

    // Nothing can be written or read from now on.
    void fail(bool failing = true) {
        const std::lock_guard lock(mutex_);
        failing_ = failing;
    }

    // Another machine's write; it is seen with the next synchronize().
    void writeElsewhere(std::string_view key, std::string bytes) {
        const std::lock_guard lock(mutex_);
        remote_.insert_or_assign(std::string(key), platform::Data(std::move(bytes)));
    }

    // Calls the handlers from the main queue with that change, whatever is in the store.
    void tell(platform::CloudChange change) {
        dispatch_.main([handlers = handlers_, change = std::move(change)] { handlers->emit(change); });
    }

    // What the other machines see.
    [[nodiscard]] std::map<std::string, std::string> remote() const {
        const std::lock_guard lock(mutex_);
        std::map<std::string, std::string> texts;
        for (const auto& [key, value] : remote_) {
            texts.emplace(key, value.bytes());
        }
        return texts;
    }

    // How often there was a question for the account, a synchronize(), and a new listener.
    [[nodiscard]] std::size_t questions() const { return questions_; }
    [[nodiscard]] std::size_t synchronizations() const { return synchronizations_; }
    [[nodiscard]] std::size_t listeners() const { return listeners_; }

private:
    using Values = std::map<std::string, platform::Data, std::less<>>;

    platform::Dispatch& dispatch_;
    mutable std::mutex mutex_;
    Values memory_;
    Values remote_;
    std::set<std::string> unsent_;
    bool account_ = false;
    bool found_ = false;
    bool failing_ = false;
    std::size_t questions_ = 0;
    std::size_t synchronizations_ = 0;
    std::size_t listeners_ = 0;
    using Handlers = support::Signal<const platform::CloudChange&>;
    std::shared_ptr<Handlers> handlers_ = std::make_shared<Handlers>();
};

} // namespace fernwick::fakes
