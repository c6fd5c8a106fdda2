// Preferences in files, in a folder of the test's own.
#pragma once

#include "platform/posix/FileUserDefaults.h"
#include "support/FakeHostEnvironment.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>

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

    std::optional<PropertyDictionary> read(std::string_view domain) {
        return FileUserDefaultsProvider(dispatching_.dispatch(), host_).read(domain);
    }

    // The domain of somebody else, whose file nobody can make sense of.
    void makeUnreadable(const std::string& domain) const {
        std::filesystem::create_directories(host_.config);
        folder_.write("config/" + domain + ".plist", "bplist00 and no more");
    }

    void setFailing(bool failing) const {
        // The folder is made by the first write, and before that nothing can fail.
        chmod(host_.config.c_str(), failing ? 0500 : 0700);
    }

private:
    fakes::TemporaryFolder folder_;
    fakes::FakeHostEnvironment host_;
    Dispatching dispatching_;
};

} // namespace fernwick::platform
