// Preferences in one property-list file per domain. Values live in memory; a serial queue writes the file
// behind them, starting at once, and writes the newest state once more when something changed meanwhile.
// Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "platform/HostEnvironment.h"
#include "platform/UserDefaults.h"

#include <memory>
#include <string>

namespace fernwick::platform {

class FileUserDefaults final : public UserDefaults {
public:
    // Reads the file at `path`. It is the only one of its path; the dispatch outlives it.
    FileUserDefaults(Dispatch& dispatch, std::string path);
    FileUserDefaults(const FileUserDefaults&) = delete;
    FileUserDefaults& operator=(const FileUserDefaults&) = delete;
    ~FileUserDefaults() override;

    [[nodiscard]] std::optional<PropertyValue> value(std::string_view key) const override;
    void set(std::string_view key, PropertyValue value) override;
    void remove(std::string_view key) override;
    [[nodiscard]] std::vector<std::string> keys() const override;
    void synchronize() override;

private:
    class Writer;

    std::shared_ptr<Writer> writer_;
    std::unique_ptr<SerialQueue> queue_;
};

// Opens `<config folder>/<domain>.plist`.
class FileUserDefaultsProvider final : public UserDefaultsProvider {
public:
    // The dispatch outlives the provider and what it opens.
    FileUserDefaultsProvider(Dispatch& dispatch, const HostEnvironment& host)
        : dispatch_(dispatch), folder_(host.configFolder()) {}

    [[nodiscard]] std::unique_ptr<UserDefaults> open(std::string_view domain) override;

private:
    Dispatch& dispatch_;
    const std::string folder_;
};

} // namespace fernwick::platform
