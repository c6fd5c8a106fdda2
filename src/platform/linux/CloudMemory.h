// What a store of shared blobs remembers: the value under each key, what of it has still to be written, and
// what the shared place held when it was last looked at. Pure. Threads: one at a time.
#pragma once

#include "platform/PropertyValue.h"
#include "platform/linux/CloudFolder.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fernwick::platform {

class CloudMemory {
public:
    [[nodiscard]] std::optional<Data> data(std::string_view key) const;

    // The value stands here until it is written, whatever others write meanwhile: it will replace that.
    void set(std::string_view key, Data value);

    // What was set and has not been written since, sorted by key.
    [[nodiscard]] std::vector<std::pair<std::string, Data>> pending() const;

    // The value was written. What was set while it was stays to be written.
    void written(const std::string& key, const Data& value);

    // Takes what others wrote over. The keys whose values that changed, sorted: those whose bytes differ from
    // what was last written or seen under them, or that are gone. None the first time, when all is new.
    [[nodiscard]] std::vector<std::string> take(const CloudFiles& files);

    // There is no shared place yet: whatever comes with it will be new.
    void beginWithNothing() { everTaken_ = true; }

private:
    struct Entry {
        std::optional<Data> value;
        std::optional<Data> seen; // in the shared place
        bool pending = false;
    };

    std::map<std::string, Entry, std::less<>> entries_;
    bool everTaken_ = false; // what is in the shared place from now on is somebody's change
};

} // namespace fernwick::platform
