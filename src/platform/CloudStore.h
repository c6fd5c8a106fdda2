// A small store of named blobs that the person's machines share; whatever carries it between them is not ours.
// The last writer of a key wins.
// Threads: each operation may be called from any thread; handlers are called on the main thread.
#pragma once

#include "platform/PropertyValue.h"
#include "support/Signal.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick::platform {

// The keys whose values somebody else changed; absent when that is not known.
using CloudChange = std::optional<std::vector<std::string>>;

class CloudStore {
public:
    // Waits for no disk.
    virtual ~CloudStore() = default;

    // Whether there is an account, or what stands for one here. May wait for the disk: not for the main thread.
    [[nodiscard]] virtual bool isSignedIn() = 0;

    // What isSignedIn() last found, at once; false before it was first asked.
    [[nodiscard]] virtual bool wasSignedIn() const = 0;

    // The value in memory under the key.
    [[nodiscard]] virtual std::optional<Data> data(std::string_view key) const = 0;

    // Replaces the value in memory; it leaves with the next synchronize().
    virtual void set(std::string_view key, Data value) = 0;

    // Writes out what was set, and reads what others wrote. False when there is no account, or when something
    // could not be written; that is tried again the next time. May wait for the disk: not for the main thread.
    [[nodiscard]] virtual bool synchronize() = 0;

    // The same in the background, with nobody told how it went.
    virtual void requestSynchronize() = 0;

    // Calls the handler on the main thread, where this is called too, after each change by somebody else for as
    // long as the subscription lives. The first listener makes the store watch.
    [[nodiscard]] virtual support::Subscription
    changedExternally(std::function<void(const CloudChange&)> handler) = 0;
};

} // namespace fernwick::platform
