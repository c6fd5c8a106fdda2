#include "routing/PACServer.h"

#include "platform/ThreadName.h"
#include "support/StandardOutput.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr std::string_view kDirect = "function FindProxyForURL(url, host) { return \"DIRECT\"; }";

PACListener::Response responseWith(std::string_view script) {
    return std::make_shared<const std::string>(
        fmt::format("HTTP/1.1 200 OK\r\nContent-Type: application/x-ns-proxy-autoconfig\r\n"
                    "Content-Length: {}\r\nConnection: close\r\n\r\n{}",
                    script.size(), script));
}

// Unicode's code points: every byte of UTF-8 that does not go on with a character begins one.
std::ptrdiff_t characterCount(std::string_view text) {
    return std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; });
}

} // namespace

PACServer::PACServer(std::uint16_t port, std::chrono::milliseconds patience)
    : port_(port), patience_(patience), currentPAC_(responseWith(kDirect)) {}

PACServer::~PACServer() {
    finish();
}

void PACServer::start() {
    const std::lock_guard lock(lifeLock_);
    if (serverThread_) {
        return;
    }
    serverSocket_ = std::make_unique<PACListener>(port_, patience_, [this] { return currentPAC(); });
    serverThread_.emplace([&served = *serverSocket_] {
        platform::nameThisThread("com.fernwick.pacserver");
        served.serve();
    });
    support::printLine(fmt::format("[PACServer] Started on port {}", port_));
}

void PACServer::stop() {
    finish();
    support::printLine("[PACServer] Stopped");
}

void PACServer::finish() {
    const std::lock_guard lock(lifeLock_);
    if (serverThread_) {
        serverSocket_->stop();
        serverThread_->join();
        serverThread_.reset();
        serverSocket_.reset();
    }
}

// The line says "bytes", and has always counted characters.
void PACServer::update(std::string_view text) {
    auto response = responseWith(text);
    {
        const std::lock_guard lock(pacLock_);
        currentPAC_.swap(response);
    } // the old one goes when the lock is free
    support::printLine(fmt::format("[PACServer] PAC updated ({} bytes)", characterCount(text)));
}

std::string PACServer::pacURL() const {
    return fmt::format("http://127.0.0.1:{}/proxy.pac", port_);
}

PACListener::Response PACServer::currentPAC() const {
    const std::lock_guard lock(pacLock_);
    return currentPAC_;
}

} // namespace fernwick
