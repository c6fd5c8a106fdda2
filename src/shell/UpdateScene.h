// The updater with what it works with: the application as it lies on the disk, the system's tools and the
// alerts. The updater itself is made with the first check, so that the start pays nothing for it. Threads: main
// thread only.
#pragma once

#include "platform/linux/LinuxUpdate.h"
#include "platform/linux/ProgramBundle.h"
#include "platform/posix/PosixFileItems.h"
#include "screens/theme/Theme.h"
#include "screens/updating/UpdateAlerts.h"
#include "updating/AppUpdater.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace fernwick {

// All that is referred to outlives the scene.
struct UpdateSceneServices {
    platform::Dispatch& dispatch;
    platform::HttpClient& http;
    platform::FileSystem& files;
    platform::CommandRunner& commands;
    platform::AdministratorShell& administrator;
    platform::HostEnvironment& host;
};

class UpdateScene {
public:
    // `outcome` is told in words what came of each check that a person asked for.
    UpdateScene(const Theme& theme, const UpdateSceneServices& services,
                std::function<void(const std::string& text)> outcome);
    UpdateScene(const UpdateScene&) = delete;
    UpdateScene& operator=(const UpdateScene&) = delete;
    ~UpdateScene();

    // Asks whether there is another version; a silent check says nothing when there is none.
    void check(bool silent);

    // The version of the application that runs; nothing when its bundle does not tell one.
    [[nodiscard]] std::optional<std::string> version() const { return bundle_.version(); }

private:
    const UpdateSceneServices services_;
    platform::ProgramBundle bundle_;
    platform::PosixFileItems items_;
    platform::LinuxUpdate system_;
    UpdateAlerts alerts_;
    std::function<void(const std::string& text)> outcome_;
    std::unique_ptr<AppUpdater> updater_;
};

} // namespace fernwick
