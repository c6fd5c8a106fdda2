// The settings page of exports, backups and the cloud, and what it works with. The manager behind it is made
// when the page is first on the screen, and stays until the end: before that no backup is made and no cloud
// listened to. Threads: main thread only.
#pragma once

#include "portability/FernwickSSHImporter.h"
#include "portability/ImportMerge.h"
#include "portability/SyncManager.h"
#include "screens/theme/Theme.h"

#include <memory>
#include <string>

class QWidget;

namespace fernwick {

class SyncScene {
public:
    // `cloudFolder` is the absolute path of the folder that the cloud is. All references outlive the scene.
    SyncScene(const Theme& theme, const SyncServices& services, TunnelStore& store, std::string cloudFolder);
    SyncScene(const SyncScene&) = delete;
    SyncScene& operator=(const SyncScene&) = delete;
    ~SyncScene();

    // A new page, a child of `parent`; the scene outlives it.
    QWidget* makePage(QWidget* parent);

private:
    SyncManager& manager();

    const Theme& theme_;
    const SyncServices services_;
    const std::string cloudFolder_;
    FernwickSSHImporter importer_;
    ImportMerge merge_;
    std::unique_ptr<SyncManager> manager_;
};

} // namespace fernwick
