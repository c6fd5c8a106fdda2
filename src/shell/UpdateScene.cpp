#include "shell/UpdateScene.h"

#include <QCoreApplication>

#include <utility>

namespace fernwick {

UpdateScene::UpdateScene(const Theme& theme, const UpdateSceneServices& services,
                         std::function<void(const std::string& text)> outcome)
    : services_(services),
      bundle_(services.host.variables(), platform::runningProgram()),
      system_(services.host, services.administrator),
      alerts_(theme),
      outcome_(std::move(outcome)) {}

UpdateScene::~UpdateScene() = default;

void UpdateScene::check(bool silent) {
    if (!updater_) {
        updater_ = std::make_unique<AppUpdater>(AppUpdaterServices{.dispatch = services_.dispatch,
                                                                   .http = services_.http,
                                                                   .screens = alerts_,
                                                                   .bundle = bundle_,
                                                                   .files = services_.files,
                                                                   .items = items_,
                                                                   .commands = services_.commands,
                                                                   .system = system_,
                                                                   .host = services_.host},
                                                [] { QCoreApplication::quit(); });
        updater_->outcome = outcome_;
    }
    updater_->checkForUpdates(silent);
}

} // namespace fernwick
