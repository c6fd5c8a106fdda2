#include "platform/linux/SecretServiceKeychain.h"

#include "platform/ThreadName.h"
#include "platform/linux/SecretServiceClient.h"

#include <condition_variable>
#include <deque>
#include <gio/gio.h>
#include <iostream>
#include <mutex>
#include <utility>

namespace fernwick::platform {

namespace {

using Result = SecretServiceClient::Result;

bool hasDisplay(const Environment& environment) {
    const auto isSet = [&](const char* name) {
        const auto found = environment.find(name);
        return found != environment.end() && !found->second.empty();
    };
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

KeychainError errorOf(KeyringFailure failure) {
    switch (failure) {
    case KeyringFailure::notFound:
        return KeychainError::notFound;
    case KeyringFailure::locked:
        return KeychainError::locked;
    case KeyringFailure::refused:
        return KeychainError::refused;
    case KeyringFailure::noCollection:
    case KeyringFailure::unreachable:
    case KeyringFailure::noAnswer:
        break;
    }
    return KeychainError::unavailable;
}

const char* reasonOf(KeyringFailure failure) {
    switch (failure) {
    case KeyringFailure::locked:
        return "the keyring is locked";
    case KeyringFailure::noCollection:
        return "the keyring has no default collection";
    case KeyringFailure::unreachable:
        return "there is no keyring service";
    case KeyringFailure::noAnswer:
        return "the keyring service gives no answer";
    case KeyringFailure::refused:
        return "the keyring service refuses";
    case KeyringFailure::notFound:
        break;
    }
    return nullptr;
}

} // namespace

// The queue between the caller and the thread.
class SecretServiceKeychain::Worker {
public:
    explicit Worker(Environment environment)
        : environment_(std::move(environment)), cancellable_(g_cancellable_new()) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() { g_object_unref(cancellable_); }

    // The caller's side.
    [[nodiscard]] Result ask(KeyringRequest request);
    [[nodiscard]] bool stop(); // whether the thread has ended

    // The thread's side.
    void run();

private:
    struct Call {
        KeyringRequest request;
        std::optional<Result> answer = {};
        bool abandoned = false; // nobody waits for the answer
    };

    [[nodiscard]] std::shared_ptr<Call> next();
    [[nodiscard]] Result perform(SecretServiceClient& client, const KeyringRequest& request);
    [[nodiscard]] bool wantsPerson(const Result& result);
    void deliver(Call& call, Result result);

    const Environment environment_;
    GCancellable* const cancellable_;
    bool askedPerson_ = false; // the thread's own

    std::mutex mutex_; // guards what follows
    std::condition_variable arrived_;
    std::condition_variable answered_;
    std::deque<std::shared_ptr<Call>> queue_;
    bool behind_ = false; // a call was not answered in time, and the thread has not caught up since
    bool ended_ = false;
};

Result SecretServiceKeychain::Worker::ask(KeyringRequest request) {
    const auto call = std::make_shared<Call>(std::move(request));
    std::unique_lock lock(mutex_);
    call->abandoned = behind_;
    if (!behind_ || call->request.kind != KeyringRequest::Kind::copy) {
        queue_.push_back(call);
        arrived_.notify_one();
    }
    if (call->abandoned) {
        return std::unexpected(KeyringFailure::noAnswer);
    }
    if (!answered_.wait_for(lock, kAnswerLimit, [&] { return call->answer.has_value(); })) {
        behind_ = true;
        call->abandoned = true;
        return std::unexpected(KeyringFailure::noAnswer);
    }
    return *std::exchange(call->answer, std::nullopt);
}

bool SecretServiceKeychain::Worker::stop() {
    std::unique_lock lock(mutex_);
    g_cancellable_cancel(cancellable_);
    arrived_.notify_one();
    return answered_.wait_for(lock, kEndLimit, [&] { return ended_; });
}

void SecretServiceKeychain::Worker::run() {
    nameThisThread("keyring");
    {
        SecretServiceClient client(environment_, cancellable_);
        while (const auto call = next()) {
            auto result = perform(client, call->request);
            const bool asks = wantsPerson(result);
            deliver(*call, std::move(result));
            if (asks) {
                client.askPerson();
            }
        }
    }
    const std::lock_guard lock(mutex_);
    ended_ = true;
    answered_.notify_all();
}

// The next call; none when the end has come.
std::shared_ptr<SecretServiceKeychain::Worker::Call> SecretServiceKeychain::Worker::next() {
    const auto isStopped = [this] { return g_cancellable_is_cancelled(cancellable_) != FALSE; };
    std::unique_lock lock(mutex_);
    behind_ = behind_ && !queue_.empty();
    arrived_.wait(lock, [&] { return isStopped() || !queue_.empty(); });
    if (isStopped()) {
        return nullptr;
    }
    auto call = std::move(queue_.front());
    queue_.pop_front();
    return call;
}

Result SecretServiceKeychain::Worker::perform(SecretServiceClient& client, const KeyringRequest& request) {
    auto result = client.perform(request);
    // The bus library gives up after a while. A change is not given up: both kinds may be made twice.
    while (!result && result.error() == KeyringFailure::noAnswer &&
           request.kind != KeyringRequest::Kind::copy && g_cancellable_is_cancelled(cancellable_) == FALSE) {
        result = client.perform(request);
    }
    return result;
}

bool SecretServiceKeychain::Worker::wantsPerson(const Result& result) {
    if (result) {
        askedPerson_ = false;
        return false;
    }
    const bool wants =
        result.error() == KeyringFailure::locked || result.error() == KeyringFailure::noCollection;
    return wants && hasDisplay(environment_) && !std::exchange(askedPerson_, true);
}

void SecretServiceKeychain::Worker::deliver(Call& call, Result result) {
    const std::lock_guard lock(mutex_);
    if (!call.abandoned) {
        call.answer = std::move(result);
        answered_.notify_all();
    }
}

SecretServiceKeychain::SecretServiceKeychain(const HostEnvironment& host)
    : worker_(std::make_shared<Worker>(host.variables())) {}

SecretServiceKeychain::~SecretServiceKeychain() {
    if (!thread_.joinable()) {
        return;
    }
    if (worker_->stop()) {
        thread_.join();
    } else {
        thread_.detach();
    }
}

std::expected<support::Secret, KeychainError> SecretServiceKeychain::copyMatching(const KeychainQuery& query) {
    return ask({.kind = KeyringRequest::Kind::copy, .item = {.identity = query}});
}

std::expected<void, KeychainError> SecretServiceKeychain::remove(const KeychainQuery& query) {
    return change({.kind = KeyringRequest::Kind::remove, .item = {.identity = query}});
}

std::expected<void, KeychainError> SecretServiceKeychain::add(const KeychainItem& item,
                                                              const support::Secret& value) {
    return change({.kind = KeyringRequest::Kind::add, .item = item, .value = support::Secret(value.text())});
}

std::expected<void, KeychainError> SecretServiceKeychain::change(KeyringRequest request) {
    const auto result = ask(std::move(request));
    return result ? std::expected<void, KeychainError>() : std::unexpected(result.error());
}

std::expected<support::Secret, KeychainError> SecretServiceKeychain::ask(KeyringRequest request) {
    if (!thread_.joinable()) {
        thread_ = std::thread([worker = worker_] { worker->run(); });
    }
    auto result = worker_->ask(std::move(request));
    if (result) {
        return std::move(*result);
    }
    tellOnce(result.error());
    return std::unexpected(errorOf(result.error()));
}

void SecretServiceKeychain::tellOnce(KeyringFailure failure) {
    const char* reason = reasonOf(failure);
    if (reason != nullptr && told_.insert(failure).second) {
        std::cerr << "Fernwick: " << reason << "; passwords and passphrases are neither read nor saved\n";
    }
}

} // namespace fernwick::platform
