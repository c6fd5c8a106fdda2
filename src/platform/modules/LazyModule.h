// Parts of the application that lie in libraries of their own and are loaded when they are first needed, so
// that the start is spared what they bring along (dlopen(3)). Threads: main thread.
#pragma once

#include "platform/Dispatch.h"
#include "platform/HostEnvironment.h"
#include "platform/HttpClient.h"
#include "platform/Keychain.h"

#include <memory>
#include <string>

namespace fernwick::platform {

// The function of that name in a library, which stays loaded; null, with a line on standard error, when there
// is none, or when the library is another version's: a package may have replaced it while the application runs.
[[nodiscard]] void* loadFromModule(const std::string& path, const char* name);

// HTTP by the module `libfernwick_http.so`, loaded with the first request. Without it every request fails.
class LazyHttpClient final : public HttpClient {
public:
    // The folder of the modules is an absolute path. The dispatch outlives the client.
    LazyHttpClient(const std::string& folder, Dispatch& dispatch);

    void send(HttpRequest request, std::function<void(HttpResult)> finished) override;
    void download(HttpRequest request, std::string folder,
                  std::function<void(HttpDownloadResult)> finished) override;

private:
    [[nodiscard]] HttpClient* client();

    std::string path_;
    Dispatch& dispatch_;
    bool tried_ = false;
    std::unique_ptr<HttpClient> client_;
};

// The keychain by the module `libfernwick_keyring.so`, loaded with the first secret. Without it the keychain is
// unavailable.
class LazyKeychain final : public Keychain {
public:
    // The folder of the modules is an absolute path. The host outlives the keychain.
    LazyKeychain(const std::string& folder, const HostEnvironment& host);

    [[nodiscard]] std::expected<support::Secret, KeychainError>
    copyMatching(const KeychainQuery& query) override;
    [[nodiscard]] std::expected<void, KeychainError> remove(const KeychainQuery& query) override;
    [[nodiscard]] std::expected<void, KeychainError> add(const KeychainItem& item,
                                                         const support::Secret& value) override;

private:
    [[nodiscard]] Keychain* keychain();

    std::string path_;
    const HostEnvironment& host_;
    bool tried_ = false;
    std::unique_ptr<Keychain> keychain_;
};

// What the modules export under these names; the first one the version that they were built for.
using ModuleVersion = const char* (*)();
using MakeHttpClient = HttpClient* (*)(Dispatch&);
using MakeKeychain = Keychain* (*)(const HostEnvironment&);
inline constexpr const char* kModuleVersion = "fernwickModuleVersion";
inline constexpr const char* kMakeHttpClient = "fernwickMakeHttpClient";
inline constexpr const char* kMakeKeychain = "fernwickMakeKeychain";

} // namespace fernwick::platform
