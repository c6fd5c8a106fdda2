// HTTP requests: to the engine's local API, and to the update server.
// Threads: main thread; a request never blocks it.
#pragma once

#include <chrono>
#include <cstddef>
#include <expected>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::platform {

struct HttpRequest {
    std::string method; // "GET", "PUT", ...
    std::string url;    // absolute, http or https
    std::vector<std::pair<std::string, std::string>> headers = {};
    std::string body = {};
    std::chrono::milliseconds timeLimit{60'000}; // from the start to the last byte of the answer
    std::size_t maximumBytes = 16U << 20U;       // an answer with a longer body is an error
};

struct HttpResponse {
    int status = 0; // 100 to 599 (RFC 9110, section 15)
    std::string body;
};

// No answer: refused, timed out, too long, or no HTTP.
struct HttpError {
    std::string description; // what a person reads
};

using HttpResult = std::expected<HttpResponse, HttpError>;

class HttpClient {
public:
    // Gives up what is under way; its handlers are not called any more.
    virtual ~HttpClient() = default;

    // Sends the request, without a proxy in between. `finished` is called once, later, on the main thread; an
    // answer with any status is an answer.
    virtual void send(HttpRequest request, std::function<void(HttpResult)> finished) = 0;
};

} // namespace fernwick::platform
