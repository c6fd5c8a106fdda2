#include "updating/AppUpdater.h"

#include "updating/UpdateInstall.h"
#include "updating/UrlText.h"

#include <chrono>
#include <utility>

namespace fernwick {

namespace {

using namespace std::chrono_literals;

constexpr const char* kUpdateTitle = "Application Update";

// The version that counts as the running one where the bundle tells none.
constexpr const char* kUnknownVersion = "3.0.1";

// From the start of the script to the end of the application.
constexpr platform::Duration kTerminateDelay{500};

std::string portalFrom(const platform::Environment& environment) {
    const auto found = environment.find("FERNWICK_UPDATE_URL");
    std::string server =
        found != environment.end() && !found->second.empty() ? found->second : FERNWICK_UPDATE_URL;
    server.resize(server.find_last_not_of('/') + 1);
    return server + "/api/update";
}

// A request as NSURLSession makes it with a time-out of a minute and the policy to ignore its cache.
platform::HttpRequest requestFor(const std::string& url) {
    return {.method = "GET",
            .url = url,
            .headers = {{"Cache-Control", "no-cache"}, {"Pragma", "no-cache"}},
            .timeLimit = 60s,
            .followsRedirects = true};
}

} // namespace

AppUpdater::AppUpdater(AppUpdaterServices services, std::function<void()> terminate)
    : services_(services),
      terminate_(std::move(terminate)),
      portalURL_(portalFrom(services.host.variables())) {}

AppUpdater::~AppUpdater() = default;

void AppUpdater::checkForUpdates(bool silent) {
    if (!isValidUrl(portalURL_)) {
        return;
    }
    services_.http.send(requestFor(portalURL_),
                        [weak = self_.weak(), silent](const platform::HttpResult& result) {
                            if (auto* updater = weak.get()) {
                                updater->handleAnswer(result, silent);
                            }
                        });
}

void AppUpdater::handleAnswer(const platform::HttpResult& result, bool silent) {
    if (!result) {
        failCheck(silent, "Network error: " + result.error().description);
        return;
    }
    const auto answer = parseUpdateAnswer(result->body);
    if (!answer) {
        failCheck(silent, answer.error());
        return;
    }
    const auto current = services_.bundle.version().value_or(kUnknownVersion);
    if (comparableVersion(answer->version) == current) {
        if (!silent) {
            showUpdateInfo(kUpdateTitle, latestVersionText(current));
            tell(silent, latestVersionText(current));
        }
        return;
    }
    services_.dispatch.main([weak = self_.weak(), answer = *answer, silent] {
        if (auto* updater = weak.get()) {
            updater->promptForUpdate(answer, silent);
        }
    });
}

void AppUpdater::failCheck(bool silent, const std::string& message) {
    if (!silent) {
        showUpdateError(message);
        tell(silent, message);
    }
}

void AppUpdater::tell(bool silent, const std::string& text) {
    if (!silent && outcome) {
        outcome(text);
    }
}

void AppUpdater::promptForUpdate(const UpdateAnswer& answer, bool silent) {
    const auto question = updateQuestion(answer);
    tell(silent, question);
    services_.screens.ask({.message = kUpdateTitle,
                           .informativeText = question,
                           .acceptButton = "Update Now",
                           .laterButton = "Later"},
                          [weak = self_.weak(), url = answer.downloadURL](bool accepted) {
                              if (auto* updater = weak.get(); updater != nullptr && accepted) {
                                  updater->downloadUpdate(url, archiveName(url));
                              }
                          });
}

void AppUpdater::downloadUpdate(const std::string& url, const std::string& name) {
    services_.dispatch.main([weak = self_.weak()] {
        if (auto* updater = weak.get()) {
            updater->services_.screens.showProgress({.message = "Downloading update...",
                                                     .informativeText =
                                                         "Please wait while downloading from Cloud...\n"
                                                         "App will automatically restart when finished.",
                                                     .button = "Downloading..."});
        }
    });
    services_.http.download(requestFor(url), services_.host.temporaryFolder(),
                            [weak = self_.weak(), name](const platform::HttpDownloadResult& result) {
                                if (auto* updater = weak.get()) {
                                    updater->handleDownloadFinished(result, name);
                                }
                            });
}

void AppUpdater::handleDownloadFinished(const platform::HttpDownloadResult& result, const std::string& name) {
    services_.dispatch.main([weak = self_.weak()] {
        if (auto* updater = weak.get()) {
            updater->services_.screens.closeSheets();
        }
    });
    if (!result) {
        showUpdateError("Download failed: " + result.error().description);
        return;
    }
    installUpdate(*result, services_.host.temporaryFolder() + "/" + name);
}

void AppUpdater::installUpdate(const std::string& downloaded, const std::string& archive) {
    const UpdateInstallServices services{.bundle = services_.bundle,
                                         .files = services_.files,
                                         .items = services_.items,
                                         .commands = services_.commands,
                                         .system = services_.system,
                                         .temporaryFolder = services_.host.temporaryFolder()};
    services_.dispatch.global(platform::Priority::userInitiated, [services, &dispatch = services_.dispatch,
                                                                  weak = self_.weak(), downloaded, archive] {
        auto done = takeDownload(services, downloaded, archive);
        if (done) {
            done = installArchive(services, archive);
        }
        if (!done) {
            dispatch.main([weak, message = done.error()] {
                if (auto* updater = weak.get()) {
                    updater->showUpdateError(message);
                }
            });
            return;
        }
        dispatch.mainAfter(kTerminateDelay, [weak] {
            if (auto* updater = weak.get()) {
                updater->terminate_();
            }
        });
    });
}

void AppUpdater::showUpdateError(const std::string& message) {
    services_.dispatch.main([weak = self_.weak(), message] {
        if (auto* updater = weak.get()) {
            updater->services_.screens.showError("Update Error", message);
        }
    });
}

void AppUpdater::showUpdateInfo(const std::string& title, const std::string& message) {
    services_.dispatch.main([weak = self_.weak(), title, message] {
        if (auto* updater = weak.get()) {
            updater->services_.screens.showInfo(title, message);
        }
    });
}

} // namespace fernwick
