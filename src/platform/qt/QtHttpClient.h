// HTTP by Qt's network access manager, which comes into being with the first request and does its work on a
// thread of its own. The system's proxy settings are never asked for; redirects are followed only where a
// request says so, and cookies not kept. Threads: main thread.
#pragma once

#include "platform/Dispatch.h"
#include "platform/HttpClient.h"

#include <cstdint>
#include <map>
#include <memory>

class QNetworkAccessManager;

namespace fernwick::platform {

class QtHttpClient final : public HttpClient {
public:
    // The dispatch outlives it.
    explicit QtHttpClient(Dispatch& dispatch);
    QtHttpClient(const QtHttpClient&) = delete;
    QtHttpClient& operator=(const QtHttpClient&) = delete;
    ~QtHttpClient() override;

    void send(HttpRequest request, std::function<void(HttpResult)> finished) override;

    // Writes the pieces on the main thread, as they come: to the system's cache, which takes them at once.
    void download(HttpRequest request, std::string folder,
                  std::function<void(HttpDownloadResult)> finished) override;

private:
    // The status, or why there is no answer.
    using Status = std::expected<int, HttpError>;
    struct Exchange;

    void start(const HttpRequest& request, std::unique_ptr<Exchange> exchange);
    void begin(std::uint64_t number, const HttpRequest& request);
    [[nodiscard]] bool receive(std::uint64_t number);
    void end(std::uint64_t number);
    void finish(std::uint64_t number, Status status);
    void failLater(std::uint64_t number, std::string description);
    void limitTime(std::uint64_t number);

    Dispatch& dispatch_;
    std::unique_ptr<QNetworkAccessManager> manager_;
    std::map<std::uint64_t, std::unique_ptr<Exchange>> exchanges_; // under way
    std::uint64_t sent_ = 0;
};

} // namespace fernwick::platform
