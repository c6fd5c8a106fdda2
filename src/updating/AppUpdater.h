// Keeps the application current: asks the maker's server for the latest version, shows its notes, fetches the
// archive, unpacks it, and leaves the replacement to a script that waits for the application's end. Nothing
// checks a signature of the archive: the transport is all there is.
// Threads: main thread. What blocks runs in the background.
#pragma once

#include "platform/ApplicationBundle.h"
#include "platform/CommandRunner.h"
#include "platform/Dispatch.h"
#include "platform/FileItems.h"
#include "platform/FileSystem.h"
#include "platform/HostEnvironment.h"
#include "platform/HttpClient.h"
#include "platform/UpdateSystem.h"
#include "support/Weak.h"
#include "updating/UpdateAnswer.h"
#include "updating/UpdateScreens.h"

#include <functional>
#include <string>

namespace fernwick {

// What the updater works with. All of it outlives the updater and the background work of the dispatch, and is
// used from there too, except the screens and the HTTP client.
struct AppUpdaterServices {
    platform::Dispatch& dispatch;
    platform::HttpClient& http;
    UpdateScreens& screens;
    const platform::ApplicationBundle& bundle;
    platform::FileSystem& files;
    platform::FileItems& items;
    platform::CommandRunner& commands;
    platform::UpdateSystem& system;
    const platform::HostEnvironment& host;
};

class AppUpdater {
public:
    // `terminate` ends the application in good order; it is called on the main thread when a script waits for
    // that end.
    AppUpdater(AppUpdaterServices services, std::function<void()> terminate);
    AppUpdater(const AppUpdater&) = delete;
    AppUpdater& operator=(const AppUpdater&) = delete;
    ~AppUpdater();

    // The URL of the update endpoint: the server that the build names, or FERNWICK_UPDATE_URL of the
    // environment where it is set and not empty, with the path "/api/update".
    [[nodiscard]] const std::string& portalURL() const { return portalURL_; }

    // Asks the server, and the person if the version there is another one. A silent check shows nothing else;
    // any other also tells that there is none, or what went wrong. A check during another one is a second one.
    void checkForUpdates(bool silent);

    // Called on the main thread with what came of each check that is not silent, once per check: the message of
    // an error, "You are using the latest version (...).", or the text of the prompt.
    std::function<void(const std::string& text)> outcome;

    // Shows an alert of critical style with the title "Update Error", behind what is on the main queue.
    void showUpdateError(const std::string& message);

    // Shows an alert of informational style, behind what is on the main queue.
    void showUpdateInfo(const std::string& title, const std::string& message);

private:
    void handleAnswer(const platform::HttpResult& result, bool silent);
    void tell(bool silent, const std::string& text);
    void failCheck(bool silent, const std::string& message);
    void promptForUpdate(const UpdateAnswer& answer, bool silent);
    void downloadUpdate(const std::string& url, const std::string& name);
    void handleDownloadFinished(const platform::HttpDownloadResult& result, const std::string& name);
    void installUpdate(const std::string& downloaded, const std::string& archive);

    AppUpdaterServices services_;
    std::function<void()> terminate_;
    std::string portalURL_;
    support::WeakSource<AppUpdater> self_{*this};
};

} // namespace fernwick
