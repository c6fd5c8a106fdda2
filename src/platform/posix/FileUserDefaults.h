// Preferences in one property-list file per domain. Values live in memory; a serial queue writes the file
// behind them, starting at once. What changes within a pause after that is written together at its end, so that
// a storm of changes does not wear out the disk. Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "platform/HostEnvironment.h"
#include "platform/UserDefaults.h"

#include <memory>
#include <string>

namespace fernwick::platform {

class FileUserDefaults final : public UserDefaults {
public:
    // Between the beginnings of two writes, unless somebody waits for the second.
    static constexpr Duration kPause{200};

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

    void writeSoon();
    void writeChanges();

    Dispatch& dispatch_;
    std::shared_ptr<Writer> writer_;
    std::unique_ptr<SerialQueue> queue_;
    std::unique_ptr<Timer> pause_;
    bool unwritten_ = false; // something that no queued write was asked for
};

// Opens `<config folder>/<domain>.plist`.
class FileUserDefaultsProvider final : public UserDefaultsProvider {
public:
    // The dispatch outlives the provider and what it opens.
    FileUserDefaultsProvider(Dispatch& dispatch, const HostEnvironment& host)
        : dispatch_(dispatch), folder_(host.configFolder()) {}

    [[nodiscard]] std::unique_ptr<UserDefaults> open(std::string_view domain) override;
    [[nodiscard]] std::optional<PropertyDictionary> read(std::string_view domain) override;

private:
    [[nodiscard]] std::string fileOf(std::string_view domain) const;

    Dispatch& dispatch_;
    const std::string folder_;
};

} // namespace fernwick::platform
