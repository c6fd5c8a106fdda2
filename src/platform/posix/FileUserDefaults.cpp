#include "platform/posix/FileUserDefaults.h"

#include "platform/posix/PreferenceFile.h"

#include <mutex>
#include <utility>

namespace fernwick::platform {

// The values, and the way from them to the file. A write copies the dictionary under the lock, which shares the
// bytes of large values, and goes to disk without it; so neither the main thread nor the writer waits for the
// other.
class FileUserDefaults::Writer {
public:
    explicit Writer(std::string path) : file_(std::move(path)), values_(file_.read()) {}

    // Read on the main thread, which alone changes them, so without the lock.
    [[nodiscard]] const PropertyDictionary& values() const { return values_; }

    // Puts a value under the key, or takes the key out. True when no write that is queued will take it along.
    [[nodiscard]] bool change(std::string_view key, std::optional<PropertyValue> value) {
        const std::lock_guard lock(mutex_);
        const auto found = values_.find(key);
        if (!value) {
            values_.erase(found);
        } else if (found != values_.end()) {
            // The old one goes with the argument: at once, since a disk that is stuck would let them pile up
            // with the writer, and after the lock.
            std::swap(found->second, *value);
        } else {
            values_.emplace(key, std::move(*value));
        }
        return !queued_;
    }

    // To be told before a write is queued.
    void willWrite() {
        const std::lock_guard lock(mutex_);
        queued_ = true;
    }

    // Writes the newest state. On the serial queue.
    void write() {
        PropertyDictionary newest;
        {
            const std::lock_guard lock(mutex_);
            queued_ = false;
            newest = values_;
        }
        const bool written = file_.write(newest);
        const std::lock_guard lock(mutex_);
        failed_ = !written;
    }

    // Whether the last write failed, so that the file lacks what was set.
    [[nodiscard]] bool hasFailed() {
        const std::lock_guard lock(mutex_);
        return failed_;
    }

private:
    PreferenceFile file_; // used by the serial queue once it was read
    std::mutex mutex_;    // guards what follows against the serial queue
    PropertyDictionary values_;
    bool queued_ = false;
    bool failed_ = false;
};

FileUserDefaults::FileUserDefaults(Dispatch& dispatch, std::string path)
    : dispatch_(dispatch),
      writer_(std::make_shared<Writer>(std::move(path))),
      queue_(dispatch.serialQueue("user defaults")) {}

FileUserDefaults::~FileUserDefaults() {
    FileUserDefaults::synchronize();
}

std::optional<PropertyValue> FileUserDefaults::value(std::string_view key) const {
    const auto& values = writer_->values();
    const auto found = values.find(key);
    return found != values.end() ? std::optional(found->second) : std::nullopt;
}

void FileUserDefaults::set(std::string_view key, PropertyValue value) {
    if (writer_->change(key, std::move(value))) {
        writeSoon();
    }
}

void FileUserDefaults::remove(std::string_view key) {
    if (writer_->values().contains(key) && writer_->change(key, std::nullopt)) {
        writeSoon();
    }
}

void FileUserDefaults::writeSoon() {
    unwritten_ = true;
    if (pause_ && pause_->isPending()) {
        return;
    }
    writeChanges();
    pause_ = dispatch_.oneShotTimer(kPause, [this] {
        if (unwritten_) {
            writeSoon();
        }
    });
}

void FileUserDefaults::writeChanges() {
    if (std::exchange(unwritten_, false)) {
        writer_->willWrite();
        queue_->async([writer = writer_] { writer->write(); });
    }
}

std::vector<std::string> FileUserDefaults::keys() const {
    std::vector<std::string> keys;
    for (const auto& [key, value] : writer_->values()) {
        keys.push_back(key);
    }
    return keys;
}

void FileUserDefaults::synchronize() {
    writeChanges();
    queue_->drain();
    if (writer_->hasFailed()) { // there may be room by now, and no other change may come
        unwritten_ = true;
        writeChanges();
        queue_->drain();
    }
}

std::unique_ptr<UserDefaults> FileUserDefaultsProvider::open(std::string_view domain) {
    return std::make_unique<FileUserDefaults>(dispatch_, fileOf(domain));
}

std::optional<PropertyDictionary> FileUserDefaultsProvider::read(std::string_view domain) {
    PreferenceFile file(fileOf(domain));
    auto values = file.read();
    return file.isReadable() ? std::optional(std::move(values)) : std::nullopt;
}

std::string FileUserDefaultsProvider::fileOf(std::string_view domain) const {
    return folder_ + "/" + std::string(domain) + ".plist";
}

} // namespace fernwick::platform
