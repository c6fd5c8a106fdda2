// A store in a folder that the person shares between machines by any program that does that: one file per key.
// There is an account when the folder is there and can be listed; it is never made here.
//
// Nothing happens before the first use. What stands in the folder at the first look is nobody's change. From
// then on a change is somebody else's when the bytes differ from what this store last wrote or saw under the
// key, or when the file is gone. What is set here and not yet written hides what others write: it will replace
// that. A folder that goes away changes nothing but that there is no account.
//
// A key that isCloudKey() refuses takes no value: set() does nothing. An empty value is written, and is none to
// the others (CloudFolder.h).
//
// Threads: as its interface; made and destroyed on the main thread. The disk is waited for by whoever calls
// isSignedIn() or synchronize(), and in the background by one thread of the dispatch at a time. The first
// listener starts a thread that sleeps until the folder changes.
#pragma once

#include "platform/CloudStore.h"
#include "platform/Dispatch.h"
#include "platform/HostEnvironment.h"
#include "platform/linux/FolderWatch.h"
#include "support/Weak.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fernwick::platform {

class FolderCloudStore final : public CloudStore {
public:
    // For so long nothing may happen in the folder before it is looked at, so that what a sync program brings
    // together is told together; but a folder that never rests is looked at every ten times that.
    static constexpr Duration kQuiet{200};

    // The folder is `Cloud` in the support folder. The dispatch outlives the store.
    FolderCloudStore(Dispatch& dispatch, const HostEnvironment& host);
    FolderCloudStore(const FolderCloudStore&) = delete;
    FolderCloudStore& operator=(const FolderCloudStore&) = delete;
    // A call that the disk still holds on another thread ends well when the disk lets it.
    ~FolderCloudStore() override;

    [[nodiscard]] bool isSignedIn() override;
    // A look at the folder in the background counts as well.
    [[nodiscard]] bool wasSignedIn() const override;
    [[nodiscard]] std::optional<Data> data(std::string_view key) const override;
    void set(std::string_view key, Data value) override;
    [[nodiscard]] bool synchronize() override;
    void requestSynchronize() override;
    [[nodiscard]] support::Subscription
    changedExternally(std::function<void(const CloudChange&)> handler) override;

private:
    class State;

    const std::string path_;
    std::shared_ptr<State> state_; // shared with all work that is under way
    std::unique_ptr<FolderWatch> watch_;
    support::Signal<const CloudChange&> changed_;
    support::WeakSource<FolderCloudStore> weak_{*this};
};

} // namespace fernwick::platform
