#include "platform/qt/QtHttpClient.h"

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QString>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace fernwick::platform {

namespace {

// What one exchange may hold of an answer that was not looked at yet.
constexpr qint64 kReadBuffer = 256 * 1024;

QByteArray bytesOf(const std::string& text) {
    return {text.data(), static_cast<qsizetype>(text.size())};
}

HttpResult failure(std::string description) {
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
    made.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
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
    std::size_t maximumBytes = 0;
    std::function<void(HttpResult)> finished;
    std::unique_ptr<QNetworkReply, DeleteLater> reply = nullptr; // absent until the request is on its way
    std::unique_ptr<QObject> listener = nullptr;                 // without it the reply tells nobody
    std::unique_ptr<Timer> timer = nullptr;
    std::string body = {};
};

QtHttpClient::QtHttpClient(Dispatch& dispatch) : dispatch_(dispatch) {}

QtHttpClient::~QtHttpClient() = default;

void QtHttpClient::send(HttpRequest request, std::function<void(HttpResult)> finished) {
    const auto number = ++sent_;
    auto& exchange =
        *exchanges_
             .emplace(number, std::make_unique<Exchange>(Exchange{.maximumBytes = request.maximumBytes,
                                                                  .finished = std::move(finished)}))
             .first->second;
    const auto limit = request.timeLimit;
    exchange.timer =
        dispatch_.oneShotTimer(limit, [this, number] { finish(number, failure("The request timed out")); });
    begin(number, request);
}

void QtHttpClient::begin(std::uint64_t number, const HttpRequest& request) {
    auto& exchange = *exchanges_.at(number);
    const QUrl url(QString::fromStdString(request.url), QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() ||
        (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https"))) {
        // Qt would read files and other things too. Told later, as every end is.
        exchange.timer = dispatch_.oneShotTimer(
            Duration{0}, [this, number] { finish(number, failure("The address is none of HTTP")); });
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
    if (static_cast<std::size_t>(bytes.size()) > exchange.maximumBytes - exchange.body.size()) {
        finish(number, failure("The answer is too long"));
        return false;
    }
    exchange.body.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
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
    finish(number, HttpResponse{.status = status.toInt(), .body = std::move(exchange.body)});
}

void QtHttpClient::finish(std::uint64_t number, HttpResult result) {
    const auto exchange = std::move(exchanges_.extract(number).mapped());
    const auto finished = std::move(exchange->finished);
    exchange->listener.reset(); // giving the reply up would tell of its end once more
    exchange->reply.reset();
    finished(std::move(result)); // which may destroy this client
}

} // namespace fernwick::platform
