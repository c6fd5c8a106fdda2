// Preferences in files, in a folder of the test's own.
#pragma once

#include "platform/posix/FileUserDefaults.h"
#include "support/FakeHostEnvironment.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <string>

namespace fernwick::platform {

// `Dispatching` has dispatch().
template <class Dispatching>
class FileDefaultsHarness {
public:
    FileDefaultsHarness() { host_.config = folder_ / "config"; }
    FileDefaultsHarness(const FileDefaultsHarness&) = delete;
    FileDefaultsHarness& operator=(const FileDefaultsHarness&) = delete;
    ~FileDefaultsHarness() { setFailing(false); }

    std::unique_ptr<UserDefaults> open(std::string_view domain) {
        return FileUserDefaultsProvider(dispatching_.dispatch(), host_).open(domain);
    }

    void setFailing(bool failing) const {
        namespace fs = std::filesystem;
        std::error_code ignored; // the folder is made by the first write
        fs::permissions(host_.config, failing ? fs::perms{0500} : fs::perms{0700}, ignored);
    }

private:
    fakes::TemporaryFolder folder_;
    fakes::FakeHostEnvironment host_;
    Dispatching dispatching_;
};

} // namespace fernwick::platform
