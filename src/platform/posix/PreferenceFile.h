// The file that holds the preferences of one domain: read once, then replaced whole, each time atomically.
// What goes wrong is told on standard error, each distinct message once.
// Threads: one at a time; the caller sees to that.
#pragma once

#include "platform/PropertyValue.h"

#include <set>
#include <string>

namespace fernwick::platform {

class PreferenceFile {
public:
    explicit PreferenceFile(std::string path);

    // The dictionary in the file; empty when there is no file. One that cannot be read, or that holds no whole
    // property list with a dictionary on top, counts as empty and is set aside by the first write.
    [[nodiscard]] PropertyDictionary read();

    // Whether nothing unreadable was found, nor is still in the way of a write.
    [[nodiscard]] bool isReadable() const { return state_ == State::sound; }

    // Replaces the file, which is on disk when this returns. A link is followed, and stays a link. The old file
    // is left whole when the new one cannot be written, when no write bit of its mode is set, or when it was
    // unreadable and could not be set aside. Whether the values are in the file now.
    bool write(const PropertyDictionary& values);

private:
    enum class State { sound, unreadable, untouchable };

    [[nodiscard]] bool setAside(const std::string& target);
    [[nodiscard]] bool isWriteProtected(const std::string& target);
    void tell(const std::string& message);
    void tellError(const std::string& what, int code);

    const std::string path_;
    State state_ = State::sound;
    bool leftoversRemoved_ = false;
    std::set<std::string> told_;
};

} // namespace fernwick::platform
