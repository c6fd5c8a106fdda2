// A store in memory, under a test's command.
// Threads: the test's thread.
#pragma once

#include "platform/CloudStore.h"

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace fernwick::fakes {

class FakeCloudStore final : public platform::CloudStore {
public:
    [[nodiscard]] bool isSignedIn() override {
        found_ = signedIn;
        return found_;
    }
    [[nodiscard]] bool wasSignedIn() const override { return found_; }

    [[nodiscard]] std::optional<platform::Data> data(std::string_view key) const override {
        const auto found = values.find(std::string(key));
        return found != values.end() ? std::optional(found->second) : std::nullopt;
    }
    void set(std::string_view key, platform::Data value) override {
        values.insert_or_assign(std::string(key), std::move(value));
    }

    [[nodiscard]] bool synchronize() override {
        ++synchronized;
        return isSignedIn() && synchronizes;
    }
    void requestSynchronize() override {
        ++requested;
        found_ = signedIn;
    }

    [[nodiscard]] support::Subscription
    changedExternally(std::function<void(const platform::CloudChange&)> handler) override {
        return changed_.connect(std::move(handler));
    }

    // Somebody else changed these keys; what they hold now is in `values` already.
    void changeExternally(const platform::CloudChange& change) const { changed_.emit(change); }

    bool signedIn = true;
    bool synchronizes = true;
    std::map<std::string, platform::Data> values;
    int synchronized = 0;
    int requested = 0;

private:
    bool found_ = false;
    support::Signal<const platform::CloudChange&> changed_;
};

} // namespace fernwick::fakes
