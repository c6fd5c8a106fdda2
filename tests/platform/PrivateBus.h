// A message bus of a test's own.
#pragma once

#include "TestProgram.h"
#include "support/TemporaryFolder.h"

#include <memory>
#include <string>

namespace fernwick::platform {

class PrivateBus {
public:
    // A bus on which nobody is started by being called.
    PrivateBus() {
        folder_.write("bus.conf", "<busconfig><type>session</type><listen>unix:tmpdir=" + folder_.path() +
                                      "</listen><auth>EXTERNAL</auth><policy context='default'>"
                                      "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/>"
                                      "<allow own='*'/></policy></busconfig>");
        daemon_ = std::make_unique<TestProgram>(
            "/usr/bin/dbus-daemon", std::vector<std::string>{"--config-file=" + (folder_ / "bus.conf"),
                                                             "--nofork", "--nopidfile", "--print-address"});
        if (!fakes::waitUntil([this] { return daemon_->output().ends_with('\n'); })) {
            throw std::runtime_error("dbus-daemon tells no address");
        }
        address_ = daemon_->output();
        address_.pop_back();
    }

    [[nodiscard]] const std::string& address() const { return address_; }

    [[nodiscard]] std::string socket() const {
        const auto start = std::string("unix:path=").size();
        return address_.substr(start, address_.find(',') - start);
    }

    // Calls a method and gives the answer as gdbus prints it; empty when the call fails.
    [[nodiscard]] std::string call(const std::string& service, const std::string& path,
                                   const std::string& method,
                                   const std::vector<std::string>& arguments = {}) const {
        std::vector<std::string> all{"call", "--address", address_, "-d", service, "-o", path, "-m", method};
        all.insert(all.end(), arguments.begin(), arguments.end());
        TestProgram program("/usr/bin/gdbus", all);
        return program.wait() == 0 ? program.output() : std::string();
    }

    [[nodiscard]] bool hasOwner(const std::string& name) const {
        return call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner",
                    {name})
            .contains("true");
    }

private:
    fakes::TemporaryFolder folder_;
    std::unique_ptr<TestProgram> daemon_;
    std::string address_;
};

} // namespace fernwick::platform
