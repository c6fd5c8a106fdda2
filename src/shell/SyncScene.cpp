#include "shell/SyncScene.h"

#include "screens/settings/SyncSettingsView.h"

#include <utility>

namespace fernwick {

SyncScene::SyncScene(const Theme& theme, const SyncServices& services, TunnelStore& store,
                     std::string cloudFolder)
    : theme_(theme),
      services_(services),
      cloudFolder_(std::move(cloudFolder)),
      importer_(services.dialogs, services.files, services.clock),
      merge_(services.defaults, services.dispatch, store, services.notifications) {}

SyncScene::~SyncScene() = default;

QWidget* SyncScene::makePage(QWidget* parent) {
    return new SyncSettingsView({.theme = theme_,
                                 .sync = [this]() -> SyncManager& { return manager(); },
                                 .importer = importer_,
                                 .merge = merge_,
                                 .dialogs = services_.dialogs,
                                 .dispatch = services_.dispatch,
                                 .clock = services_.clock,
                                 .host = services_.host,
                                 .cloudFolder = cloudFolder_},
                                parent);
}

SyncManager& SyncScene::manager() {
    if (!manager_) {
        manager_ = std::make_unique<SyncManager>(services_);
    }
    return *manager_;
}

} // namespace fernwick
