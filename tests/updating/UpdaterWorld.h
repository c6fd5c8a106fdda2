// An updater on a machine of fakes. Threads: the test's thread.
#pragma once

#include "support/FakeApplicationBundle.h"
#include "support/FakeCommandRunner.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileItems.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeHttpClient.h"
#include "support/FakeUpdateScreens.h"
#include "support/FakeUpdateSystem.h"
#include "updating/AppUpdater.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fernwick {

struct UpdaterWorld {
    UpdaterWorld() {
        disk.folders = {"/opt", "/opt/Fernwick.app", "/tmp"};
        commands.setResponder([this](const platform::CommandRequest& request) {
            return request.executable == "/usr/bin/unpack" ? unpack(request) : shell;
        });
        remake();
    }

    // A new updater, for a test that changed the host.
    void remake() {
        updater = std::make_unique<AppUpdater>(AppUpdaterServices{.dispatch = dispatch,
                                                                  .http = http,
                                                                  .screens = screens,
                                                                  .bundle = bundle,
                                                                  .files = disk,
                                                                  .items = items,
                                                                  .commands = commands,
                                                                  .system = system,
                                                                  .host = host},
                                               [this] { terminations.push_back(dispatch.elapsed()); });
        updater->outcome = [this](const std::string& text) { outcomes.push_back(text); };
    }

    // A check that the server answers so.
    void check(const std::string& body, bool silent = false) {
        http.forget();
        http.answer(200, body);
        updater->checkForUpdates(silent);
        dispatch.advance(platform::Duration{0});
    }

    // The person agrees, and the server sends these bytes.
    void accept(const std::string& bytes = "archive") {
        http.forget();
        http.answer(200, bytes);
        screens.answers.back()(true);
        dispatch.advance(platform::Duration{0});
    }

    // The whole way from a check to the script, for an archive of that address.
    void update(const std::string& url = "https://maker.example/f/Fernwick.zip", bool silent = false) {
        check(R"({"version":"4.0","download_url":")" + url + "\"}", silent);
        accept();
    }

    [[nodiscard]] std::vector<std::string> errors() const {
        std::vector<std::string> errors;
        for (const auto& text : screens.shown) {
            if (text.starts_with("error: Update Error: ")) {
                errors.push_back(text.substr(21));
            }
        }
        return errors;
    }

    // The one script on the disk: its path and the file. Empty when there is none.
    [[nodiscard]] std::pair<std::string, fakes::FakeFileSystem::File> script() const {
        for (const auto& [path, file] : disk.files) {
            if (path.ends_with("/update.sh")) {
                return {path, file};
            }
        }
        return {};
    }

    platform::CommandResult unpacked; // what the unpacking tells; nobody is to look
    std::vector<std::string> contents{"Fernwick.app"};
    fakes::FakeCommandRunner::Answer shell = platform::CommandResult{};
    bool unpackable = true; // whether the tool for that is there

    fakes::FakeDispatch dispatch;
    fakes::FakeFileSystem disk;
    fakes::FakeFileItems items{disk};
    fakes::FakeHttpClient http{dispatch, &disk};
    fakes::FakeUpdateScreens screens;
    fakes::FakeApplicationBundle bundle;
    fakes::FakeCommandRunner commands;
    fakes::FakeUpdateSystem system;
    fakes::FakeHostEnvironment host;
    std::vector<platform::Duration> terminations; // when the application was told to end
    std::vector<std::string> outcomes;
    std::unique_ptr<AppUpdater> updater;

private:
    fakes::FakeCommandRunner::Answer unpack(const platform::CommandRequest& request) {
        if (!unpackable) {
            return std::unexpected(platform::LaunchError{2, "No such file or directory"});
        }
        const auto& folder = request.arguments.at(1);
        for (const auto& name : contents) {
            disk.folders.insert(folder + "/" + name);
        }
        items.order[folder] = contents;
        return unpacked;
    }
};

} // namespace fernwick
