#include "platform/modules/LazyModule.h"

#include <cstdio>
#include <dlfcn.h>
#include <string_view>
#include <utility>

namespace fernwick::platform {

namespace {

constexpr const char* kMissing = "The part of the application that asks the network is missing";

} // namespace

void* loadFromModule(const std::string& path, const char* name) {
    void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* version = module != nullptr ? dlsym(module, kModuleVersion) : nullptr;
    if (version != nullptr &&
        reinterpret_cast<ModuleVersion>(version)() != std::string_view(FERNWICK_VERSION)) {
        std::fprintf(stderr, "Fernwick: %s is another version's; start Fernwick anew\n", path.c_str());
        return nullptr;
    }
    void* found = version != nullptr ? dlsym(module, name) : nullptr;
    if (found == nullptr) {
        const char* reason = dlerror(); // NOLINT(concurrency-mt-unsafe): glibc keeps it by thread
        std::fprintf(stderr, "Fernwick: a part of the application is missing: %s\n", reason);
    }
    return found;
}

LazyHttpClient::LazyHttpClient(const std::string& folder, Dispatch& dispatch)
    : path_(folder + "/libfernwick_http.so"), dispatch_(dispatch) {}

HttpClient* LazyHttpClient::client() {
    if (!std::exchange(tried_, true)) {
        if (void* make = loadFromModule(path_, kMakeHttpClient)) {
            client_.reset(reinterpret_cast<MakeHttpClient>(make)(dispatch_));
        }
    }
    return client_.get();
}

void LazyHttpClient::send(HttpRequest request, std::function<void(HttpResult)> finished) {
    if (auto* loaded = client()) {
        loaded->send(std::move(request), std::move(finished));
        return;
    }
    dispatch_.main([finished = std::move(finished)] { finished(std::unexpected(HttpError{kMissing})); });
}

void LazyHttpClient::download(HttpRequest request, std::string folder,
                              std::function<void(HttpDownloadResult)> finished) {
    if (auto* loaded = client()) {
        loaded->download(std::move(request), std::move(folder), std::move(finished));
        return;
    }
    dispatch_.main([finished = std::move(finished)] { finished(std::unexpected(HttpError{kMissing})); });
}

LazyKeychain::LazyKeychain(const std::string& folder, const HostEnvironment& host)
    : path_(folder + "/libfernwick_keyring.so"), host_(host) {}

Keychain* LazyKeychain::keychain() {
    if (!std::exchange(tried_, true)) {
        if (void* make = loadFromModule(path_, kMakeKeychain)) {
            keychain_.reset(reinterpret_cast<MakeKeychain>(make)(host_));
        }
    }
    return keychain_.get();
}

std::expected<support::Secret, KeychainError> LazyKeychain::copyMatching(const KeychainQuery& query) {
    auto* loaded = keychain();
    return loaded != nullptr ? loaded->copyMatching(query) : std::unexpected(KeychainError::unavailable);
}

std::expected<void, KeychainError> LazyKeychain::remove(const KeychainQuery& query) {
    auto* loaded = keychain();
    return loaded != nullptr ? loaded->remove(query) : std::unexpected(KeychainError::unavailable);
}

std::expected<void, KeychainError> LazyKeychain::add(const KeychainItem& item, const support::Secret& value) {
    auto* loaded = keychain();
    return loaded != nullptr ? loaded->add(item, value) : std::unexpected(KeychainError::unavailable);
}

} // namespace fernwick::platform
