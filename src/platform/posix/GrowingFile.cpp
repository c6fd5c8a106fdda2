#include "platform/posix/GrowingFile.h"

#include "platform/posix/SystemError.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace fernwick::platform {

namespace {

std::unexpected<FileError> failure(int code) {
    return std::unexpected(FileError{code, describeError(code)});
}

} // namespace

std::expected<GrowingFile, FileError> GrowingFile::in(const std::string& folder) {
    std::string path = folder + "/FernwickDownload_XXXXXX";
    FileDescriptor file(mkostemp(path.data(), O_CLOEXEC));
    if (!file) {
        return failure(errno);
    }
    return GrowingFile(std::move(file), std::move(path));
}

GrowingFile::~GrowingFile() {
    if (file_) {
        unlink(path_.c_str());
    }
}

std::expected<void, FileError> GrowingFile::append(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = write(file_.get(), bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return failure(errno);
        }
    }
    return {};
}

std::expected<std::string, FileError> GrowingFile::keep() {
    // A second descriptor is closed first, so that a failure finds the file still owned and removes it.
    const int copy = fcntl(file_.get(), F_DUPFD_CLOEXEC, 0);
    if (copy < 0 || close(copy) != 0) {
        return failure(errno);
    }
    file_.reset();
    return path_;
}

} // namespace fernwick::platform
