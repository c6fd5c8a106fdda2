// Disks of a test's own: what it mounts, only its thread and those that it starts see (mount_namespaces(7)).
// Needs root.
#pragma once

#include <cerrno>
#include <fcntl.h>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <system_error>
#include <vector>

namespace fernwick::platform {

class PrivateMounts {
public:
    PrivateMounts() {
        check(unshare(CLONE_NEWNS));
        check(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr));
    }
    PrivateMounts(const PrivateMounts&) = delete;
    PrivateMounts& operator=(const PrivateMounts&) = delete;
    ~PrivateMounts() {
        for (auto place = places_.rbegin(); place != places_.rend(); ++place) {
            umount2(place->c_str(), MNT_DETACH);
        }
    }

    // An empty disk of so many bytes over the folder.
    void mountDisk(const std::string& folder, std::size_t bytes) {
        check(mount("tmpfs", folder.c_str(), "tmpfs", 0, ("mode=755,size=" + std::to_string(bytes)).c_str()));
        places_.push_back(folder);
    }

    // Makes the folder read-only, whoever writes, or takes that back.
    void setReadOnly(const std::string& folder, bool readOnly) {
        if (!readOnly) {
            check(umount2(folder.c_str(), MNT_DETACH));
            std::erase(places_, folder);
            return;
        }
        check(mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr));
        places_.push_back(folder);
        check(mount("none", folder.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr));
    }

private:
    static void check(int result) {
        if (result != 0) {
            throw std::system_error(errno, std::system_category(), "no mount of the test's own (root?)");
        }
    }

    std::vector<std::string> places_;
};

} // namespace fernwick::platform
