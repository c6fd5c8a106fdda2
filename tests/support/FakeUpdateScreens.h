// What the updater shows, written down. Threads: the test's thread.
#pragma once

#include "updating/UpdateScreens.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace fernwick::fakes {

class FakeUpdateScreens final : public UpdateScreens {
public:
    void showError(const std::string& title, const std::string& message) override {
        shown.push_back("error: " + title + ": " + message);
    }
    void showInfo(const std::string& title, const std::string& message) override {
        shown.push_back("info: " + title + ": " + message);
    }
    void ask(const UpdatePrompt& prompt, std::function<void(bool)> answered) override {
        shown.push_back("ask: " + prompt.message);
        prompts.push_back(prompt);
        answers.push_back(std::move(answered));
    }
    void showProgress(const UpdateProgress& progress) override {
        shown.push_back("progress: " + progress.message);
        notices.push_back(progress);
    }
    void closeSheets() override { shown.emplace_back("close sheets"); }

    // Everything in order, as "kind: text".
    std::vector<std::string> shown;
    std::vector<UpdatePrompt> prompts;
    std::vector<std::function<void(bool)>> answers; // to the prompts
    std::vector<UpdateProgress> notices;
};

} // namespace fernwick::fakes
