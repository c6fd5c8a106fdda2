#include "platform/qt/QtHttpClient.h"

#include "platform/posix/GrowingFile.h"

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QString>
#include <QUrl>

#include <optional>
#include <utility>

namespace fernwick::platform {

namespace {

// What one exchange may hold of an answer that was not looked at yet.
constexpr qint64 kReadBuffer = 256 * 1024;

QByteArray bytesOf(const std::string& text) {
    return {text.data(), static_cast<qsizetype>(text.size())};
}

std::unexpected<HttpError> failure(std::string description) {
    return std::unexpected(HttpError{std::move(description)});
}

// Whether a reply that ended so is a whole answer: Qt counts a status from 400 on as an error too.
bool isAnswer(QNetworkReply::NetworkError error) {
    const bool fromStatus =
        (error > QNetworkReply::UnknownProxyError && error <= QNetworkReply::UnknownContentError) ||
        error >= QNetworkReply::InternalServerError || error == QNetworkReply::ProtocolInvalidOperationError;
    return error == QNetworkReply::NoError || (fromStatus && error != QNetworkReply::ContentReSendError);
}

QNetworkRequest requestFor(const QUrl& url, const HttpRequest& request) {
    QNetworkRequest made(url);
    made.setAttribute(QNetworkRequest::RedirectPolicyAttribute, request.followsRedirects
                                                                    ? QNetworkRequest::NoLessSafeRedirectPolicy
                                                                    : QNetworkRequest::ManualRedirectPolicy);
    made.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    made.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    for (const auto& [name, value] : request.headers) {
        made.setRawHeader(bytesOf(name), bytesOf(value));
    }
    return made;
}

struct DeleteLater {
    void operator()(QNetworkReply* reply) const {
        reply->abort();
        reply->deleteLater(); // it may be the one whose signal is being handled
    }
};

} // namespace

struct QtHttpClient::Exchange {
    // Takes bytes of the body; tells what is wrong with them, if anything.
    std::function<std::expected<void, HttpError>(std::string_view)> take;
    std::function<void(Status)> finished;
    Duration timeLimit{0};
    bool limitsSilence = false; // the time limit is for a silence, not for all of it
    std::unique_ptr<QNetworkReply, DeleteLater> reply = nullptr; // absent until the request is on its way
    std::unique_ptr<QObject> listener = nullptr;                 // without it the reply tells nobody
    std::unique_ptr<Timer> timer = nullptr;
};

QtHttpClient::QtHttpClient(Dispatch& dispatch) : dispatch_(dispatch) {}

QtHttpClient::~QtHttpClient() = default;

void QtHttpClient::send(HttpRequest request, std::function<void(HttpResult)> finished) {
    const auto body = std::make_shared<std::string>();
    auto exchange = std::make_unique<Exchange>();
    exchange->take = [body,
                      most = request.maximumBytes](std::string_view bytes) -> std::expected<void, HttpError> {
        if (bytes.size() > most - body->size()) {
            return failure("The answer is too long");
        }
        body->append(bytes);
        return {};
    };
    exchange->finished = [body, finished = std::move(finished)](const Status& status) {
        finished(status ? HttpResult(HttpResponse{*status, std::move(*body)})
                        : failure(status.error().description));
    };
    start(request, std::move(exchange));
}

void QtHttpClient::download(HttpRequest request, std::string folder,
                            std::function<void(HttpDownloadResult)> finished) {
    const auto file = std::make_shared<std::expected<GrowingFile, FileError>>(GrowingFile::in(folder));
    auto exchange = std::make_unique<Exchange>();
    exchange->limitsSilence = true;
    exchange->take = [file](std::string_view bytes) -> std::expected<void, HttpError> {
        const auto written = (*file)->append(bytes);
        return written ? std::expected<void, HttpError>{} : failure(written.error().description);
    };
    exchange->finished = [file, finished = std::move(finished)](const Status& status) {
        const auto kept = status ? (*file)->keep() : std::unexpected(FileError{0, status.error().description});
        if (*file) {
            const auto unkept = *std::move(*file); // is removed before anybody is told
        }
        finished(kept ? HttpDownloadResult(*kept) : failure(kept.error().description));
    };
    if (!*file) {
        const auto number = ++sent_;
        exchanges_.emplace(number, std::move(exchange));
        failLater(number, file->error().description);
        return;
    }
    start(request, std::move(exchange));
}

void QtHttpClient::start(const HttpRequest& request, std::unique_ptr<Exchange> exchange) {
    const auto number = ++sent_;
    exchange->timeLimit = request.timeLimit;
    exchanges_.emplace(number, std::move(exchange));
    limitTime(number);
    begin(number, request);
}

// Lets the time limit begin anew.
void QtHttpClient::limitTime(std::uint64_t number) {
    auto& exchange = *exchanges_.at(number);
    exchange.timer = dispatch_.oneShotTimer(
        exchange.timeLimit, [this, number] { finish(number, failure("The request timed out")); });
}

void QtHttpClient::failLater(std::uint64_t number, std::string description) {
    exchanges_.at(number)->timer =
        dispatch_.oneShotTimer(Duration{0}, [this, number, description = std::move(description)] {
            finish(number, failure(description));
        });
}

void QtHttpClient::begin(std::uint64_t number, const HttpRequest& request) {
    auto& exchange = *exchanges_.at(number);
    const QUrl url(QString::fromStdString(request.url), QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() ||
        (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https"))) {
        failLater(number, "The address is none of HTTP"); // Qt would read files and other things too
        return;
    }
    if (!manager_) {
        manager_ = std::make_unique<QNetworkAccessManager>();
        manager_->setProxy(QNetworkProxy::NoProxy); // asking for the system's loads libproxy's plug-ins
    }
    const auto verb = bytesOf(request.method);
    exchange.reply.reset(request.body.empty() ? manager_->sendCustomRequest(requestFor(url, request), verb)
                                              : manager_->sendCustomRequest(requestFor(url, request), verb,
                                                                            bytesOf(request.body)));
    auto* const reply = exchange.reply.get();
    reply->setReadBufferSize(kReadBuffer);
    exchange.listener = std::make_unique<QObject>();
    auto* const listener = exchange.listener.get();
    QObject::connect(reply, &QNetworkReply::readyRead, listener, [this, number] { (void)receive(number); });
    QObject::connect(reply, &QNetworkReply::finished, listener, [this, number] { end(number); });
}

// Takes what has come. False when that ended the exchange, and perhaps this client.
bool QtHttpClient::receive(std::uint64_t number) {
    auto& exchange = *exchanges_.at(number);
    const auto bytes = exchange.reply->readAll();
    if (auto taken = exchange.take({bytes.constData(), static_cast<std::size_t>(bytes.size())}); !taken) {
        finish(number, failure(taken.error().description));
        return false;
    }
    if (exchange.limitsSilence) {
        limitTime(number);
    }
    return true;
}

void QtHttpClient::end(std::uint64_t number) {
    if (!receive(number)) { // what is left
        return;
    }
    auto& exchange = *exchanges_.at(number);
    const auto status = exchange.reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid() || !isAnswer(exchange.reply->error())) {
        finish(number, failure(exchange.reply->errorString().toStdString()));
        return;
    }
    finish(number, status.toInt());
}

void QtHttpClient::finish(std::uint64_t number, Status status) {
    const auto exchange = std::move(exchanges_.extract(number).mapped());
    const auto finished = std::move(exchange->finished);
    exchange->listener.reset(); // giving the reply up would tell of its end once more
    exchange->reply.reset();
    exchange->take = nullptr;
    finished(std::move(status)); // which may destroy this client
}

} // namespace fernwick::platform
