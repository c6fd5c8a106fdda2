// The network, the machine's sleep, the panels and the pasteboard under a test's command.
// Threads: the test's thread.
#pragma once

#include "platform/Dialogs.h"
#include "platform/NetworkMonitor.h"
#include "platform/Pasteboard.h"
#include "platform/PowerEvents.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::fakes {

class FakeNetworkMonitor final : public platform::NetworkMonitor {
public:
    void start(platform::SerialQueue& queue,
               std::function<void(platform::NetworkPathStatus)> pathUpdateHandler) override {
        queue_ = &queue;
        handler_ = std::move(pathUpdateHandler);
    }

    // Tells a status on the monitor's queue. Only after the start.
    void report(platform::NetworkPathStatus status) {
        queue_->async([this, status] { handler_(status); });
    }

    [[nodiscard]] bool started() const { return queue_ != nullptr; }

private:
    platform::SerialQueue* queue_ = nullptr;
    std::function<void(platform::NetworkPathStatus)> handler_;
};

class FakePowerEvents final : public platform::PowerEvents {
public:
    void start() override { started = true; }

    bool started = false;
};

class FakeDialogs final : public platform::Dialogs {
public:
    void openFile(const platform::OpenFileRequest& request,
                  std::function<void(std::optional<std::string>)> chosen) override {
        requests.push_back(request);
        answer = std::move(chosen);
    }

    void openFiles(const platform::OpenFileRequest& request,
                   std::function<void(std::vector<std::string>)> chosen) override {
        requests.push_back(request);
        answerFiles = std::move(chosen);
    }
    void chooseFolder(const platform::FolderRequest& request,
                      std::function<void(std::optional<std::string>)> chosen) override {
        folderRequests.push_back(request);
        answer = std::move(chosen);
    }
    void saveFile(const platform::SaveFileRequest& request,
                  std::function<void(std::optional<std::string>)> chosen) override {
        saveRequests.push_back(request);
        answer = std::move(chosen);
    }

    std::vector<platform::OpenFileRequest> requests;
    std::vector<platform::FolderRequest> folderRequests;
    std::vector<platform::SaveFileRequest> saveRequests;
    std::function<void(std::optional<std::string>)> answer;    // of the panel that was opened last
    std::function<void(std::vector<std::string>)> answerFiles; // the same, of one for several files
};

class FakePasteboard final : public platform::Pasteboard {
public:
    void setString(std::string_view text) override { texts.emplace_back(text); }

    std::vector<std::string> texts;
};

} // namespace fernwick::fakes
