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
    std::chrono::milliseconds timeLimit{60'000}; // what it limits, the operation says
    std::size_t maximumBytes = 16U << 20U;       // an answer with a longer body is an error; not for downloads
    bool followsRedirects = false;               // wherever they lead, but never from https to http
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

// The absolute path of the file that holds the body.
using HttpDownloadResult = std::expected<std::string, HttpError>;

class HttpClient {
public:
    // Gives up what is under way; its handlers are not called any more, and unfinished files are removed.
    virtual ~HttpClient() = default;

    // Sends the request, without a proxy in between. `finished` is called once, later, on the main thread; an
    // answer with any status is an answer. The time limit is for all of it, to the last byte of the answer.
    virtual void send(HttpRequest request, std::function<void(HttpResult)> finished) = 0;

    // The same, with the body going piece by piece into a new file in the folder, which its owner alone may
    // read and write; it is the caller's from then on. The body of any status is a body. The time limit is for
    // the longest silence, as in URLSession. Fails also when the body breaks off before the length that was
    // told, and when it cannot be written; no file is left then.
    virtual void download(HttpRequest request, std::string folder,
                          std::function<void(HttpDownloadResult)> finished) = 0;
};

} // namespace fernwick::platform
