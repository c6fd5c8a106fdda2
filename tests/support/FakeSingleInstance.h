// A claim that answers as the test says. Instances that share a session find each other.
#pragma once

#include "platform/SingleInstance.h"

#include <memory>

namespace fernwick::fakes {

class FakeSingleInstance final : public platform::SingleInstance {
public:
    // What the starts of one user session have in common: who is the application.
    struct Session {
        FakeSingleInstance* first = nullptr;
    };

    explicit FakeSingleInstance(std::shared_ptr<Session> session = std::make_shared<Session>())
        : session_(std::move(session)) {}
    FakeSingleInstance(const FakeSingleInstance&) = delete;
    FakeSingleInstance& operator=(const FakeSingleInstance&) = delete;
    ~FakeSingleInstance() override {
        if (session_->first == this) {
            session_->first = nullptr;
        }
    }

    [[nodiscard]] Claim claim(Start start) override {
        if (session_->first == nullptr || session_->first == this) {
            session_->first = this;
            return Claim::first;
        }
        if (start == Start::shown) {
            session_->first->reopened.emit();
        }
        return Claim::second;
    }

private:
    std::shared_ptr<Session> session_;
};

} // namespace fernwick::fakes
