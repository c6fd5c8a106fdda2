// A store in a folder of the test's own.
#pragma once

#include "platform/linux/FolderCloudStore.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <filesystem>
#include <memory>
#include <string>

namespace fernwick::platform {

// The fake dispatch, whose time passes while a test waits for what the kernel tells.
class PassingTime {
public:
    fakes::FakeDispatch& dispatch() { return dispatch_; }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        return fakes::waitUntil([this] { dispatch_.advance(Duration(1)); }, condition);
    }

private:
    fakes::FakeDispatch dispatch_;
};

// `Dispatching` has dispatch() and waitUntil(condition).
template <class Dispatching>
class CloudFolderHarness {
public:
    CloudFolderHarness() {
        host_.support = folder_ / "Fernwick";
        setSignedIn(true);
    }

    // Made at the first use.
    CloudStore& store() {
        if (!store_) {
            store_ = open();
        }
        return *store_;
    }
    // Another one on the same folder, as another program has it.
    std::unique_ptr<CloudStore> open() {
        return std::make_unique<FolderCloudStore>(dispatching_.dispatch(), host_);
    }

    void setSignedIn(bool signedIn) const {
        if (signedIn) {
            std::filesystem::create_directories(path());
        } else {
            std::filesystem::remove_all(path());
        }
    }

    // As a sync program does it: beside, then in place.
    void change(const std::string& key, const std::string& bytes) const {
        const auto beside = "Fernwick/Cloud/.syncthing." + key + ".tmp";
        folder_.write(beside, bytes);
        std::filesystem::rename(folder_ / beside, path(key));
    }
    void remove(const std::string& key) const { std::filesystem::remove(path(key)); }

    template <class Condition>
    [[nodiscard]] bool waitUntil(Condition condition) {
        return dispatching_.waitUntil(condition);
    }

    [[nodiscard]] std::string path() const { return folder_ / "Fernwick/Cloud"; }
    [[nodiscard]] std::string path(const std::string& name) const { return path() + "/" + name; }
    [[nodiscard]] std::string read(const std::string& key) const {
        return folder_.read("Fernwick/Cloud/" + key);
    }
    [[nodiscard]] const fakes::TemporaryFolder& folder() const { return folder_; }
    Dispatching& dispatching() { return dispatching_; }
    void end() { store_.reset(); }

private:
    fakes::TemporaryFolder folder_;
    fakes::FakeHostEnvironment host_;
    Dispatching dispatching_;
    std::unique_ptr<CloudStore> store_;
};

} // namespace fernwick::platform
