#include "screens/settings/ExportImportForm.h"

#include "screens/theme/Parts.h"

#include <QPushButton>

#include <utility>

namespace fernwick {

namespace {

QString importFailed() {
    return QStringLiteral("Import Failed");
}

} // namespace

ExportImportForm::ExportImportForm(SyncParts parts, QWidget* parent) : SyncForm(std::move(parts), parent) {
    addRow(newText(QStringLiteral(
        "Export all tunnels to a JSON file, or import from a previous export or .backup file.")));
    export_ = newButton(QStringLiteral("Export Tunnels..."), "exportButton", [this] { exportTunnels(); });
    import_ = newButton(QStringLiteral("Import Tunnels..."), "importButton", [this] { importTunnels(); });
    addButtons({export_, import_});
    addDivider();
    addGroup({makeLabel(QStringLiteral("Import from Fernwick SSH"), theme().font(13), this),
              newText(QStringLiteral("Import tunnels exported from Fernwick SSH app (.fernwick files)"))});
    profiles_ =
        newButton(QStringLiteral("Import .fernwick..."), "importProfilesButton", [this] { importProfiles(); });
    addButtons({profiles_});
}

void ExportImportForm::exportTunnels() {
    sync().exportAll(
        told(HeldButton(*export_), QStringLiteral("Export Done"), QStringLiteral("Export Failed")));
}

void ExportImportForm::importTunnels() {
    platform::OpenFileRequest request;
    request.title = "Import Tunnels";
    request.kind = platform::FileKind{"Fernwick backups", {"json", "backup"}};
    parts().context.dialogs.openFile(
        request, [&manager = sync(), done = told(HeldButton(*import_), QStringLiteral("Import Done"),
                                                 importFailed())](const std::optional<std::string>& path) {
            if (path) {
                manager.restoreBackup(*path, done);
            } else {
                done(false, "Cancelled");
            }
        });
}

// The success is told before anything is stored, with the number that the file holds.
void ExportImportForm::importProfiles() {
    parts().context.importer.importFile(
        [&merge = parts().context.merge,
         done = told(HeldButton(*profiles_), QStringLiteral("Import Successful"), importFailed())](
            const FernwickSSHImporter::Result& imported) {
            if (!imported) {
                done(false, imported.error().description());
                return;
            }
            done(true, importedText(imported->size()));
            merge.merge(*imported);
        });
}

} // namespace fernwick
