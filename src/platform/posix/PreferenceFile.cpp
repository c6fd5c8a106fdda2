#include "platform/posix/PreferenceFile.h"

#include "platform/posix/AtomicFile.h"
#include "platform/posix/PropertyListFile.h"
#include "platform/posix/SystemError.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace fernwick::platform {

PreferenceFile::PreferenceFile(std::string path) : path_(std::move(path)) {}

PropertyDictionary PreferenceFile::read() {
    const auto bytes = readWholeFile(path_);
    if (!bytes) {
        // A folder on the way that is a file has no file in it either; writing will tell.
        if (bytes.error() != ENOENT && bytes.error() != ENOTDIR) {
            state_ = State::unreadable;
            tellError("cannot be read", bytes.error());
        }
        return {};
    }
    auto value = parsePropertyList(*bytes);
    if (!value || value->as<PropertyDictionary>() == nullptr) {
        state_ = State::unreadable;
        tell("cannot be read: it is not a property list with a dictionary on top");
        return {};
    }
    return std::move(std::get<PropertyDictionary>(value->value));
}

bool PreferenceFile::write(const PropertyDictionary& values) {
    if (state_ == State::untouchable) {
        return false;
    }
    const auto target = followLinks(path_);
    if (const int code = makeFolders(parentFolder(target)); code != 0) {
        tellError("cannot be written", code);
        return false;
    }
    if (state_ == State::unreadable && !setAside(target)) {
        return false;
    }
    if (isWriteProtected(target)) {
        return false;
    }
    if (!leftoversRemoved_) {
        leftoversRemoved_ = true;
        removeTemporaryFiles(target);
    }
    if (const int code = replaceFile(target, encodePropertyList(values)); code != 0) {
        tellError("cannot be written", code);
        return false;
    }
    return true;
}

// True once nothing unreadable stands in the way.
bool PreferenceFile::setAside(const std::string& target) {
    struct stat found = {};
    if (lstat(target.c_str(), &found) != 0 && errno == ENOENT) {
        state_ = State::sound; // someone else took it away
        return true;
    }
    const auto place = moveAside(target, target + ".unreadable-");
    if (!place) {
        state_ = State::untouchable;
        tellError("cannot be read nor set aside, so nothing will be written to it", place.error());
        return false;
    }
    state_ = State::sound;
    tell("was unreadable and is kept as " + *place);
    return true;
}

// Asked of the mode, since the superuser could write all the same.
bool PreferenceFile::isWriteProtected(const std::string& target) {
    constexpr mode_t kAnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;
    struct stat file = {};
    struct stat folder = {};
    const bool fileIsProtected = stat(target.c_str(), &file) == 0 && (file.st_mode & kAnyWriteBit) == 0;
    const bool folderIsProtected =
        stat(parentFolder(target).c_str(), &folder) == 0 && (folder.st_mode & kAnyWriteBit) == 0;
    if (fileIsProtected || folderIsProtected) {
        tell("is write-protected; changes are kept in memory only");
    }
    return fileIsProtected || folderIsProtected;
}

void PreferenceFile::tellError(const std::string& what, int code) {
    tell(what + ": " + describeError(code));
}

void PreferenceFile::tell(const std::string& message) {
    if (told_.insert(message).second) {
        const auto line = "[UserDefaults] " + path_ + " " + message + "\n";
        std::fputs(line.c_str(), stderr);
    }
}

} // namespace fernwick::platform
