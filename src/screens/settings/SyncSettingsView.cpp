#include "screens/settings/SyncSettingsView.h"

#include "screens/settings/AutomaticBackupForm.h"
#include "screens/settings/BackupHistory.h"
#include "screens/settings/CloudSyncForm.h"
#include "screens/settings/ExportImportForm.h"
#include "screens/theme/AlertSheet.h"
#include "screens/theme/Announcement.h"
#include "screens/theme/DisplayText.h"

#include <QPushButton>
#include <QShowEvent>

#include <utility>

namespace fernwick {

SyncSettingsView::SyncSettingsView(SyncPageContext context, QWidget* parent)
    : FormPage(context.theme, parent, {.above = grid::kMedium, .between = grid::kLarge}),
      context_(std::move(context)) {
    setObjectName(QStringLiteral("syncTab"));
}

void SyncSettingsView::showEvent(QShowEvent* event) {
    FormPage::showEvent(event);
    if (event->spontaneous()) {
        return;
    }
    if (sync_ == nullptr) {
        sync_ = &context_.sync();
        addSections();
    }
    sync_->refreshBackupEntries();
    sync_->refreshICloudStatus();
}

void SyncSettingsView::addSections() {
    const SyncParts parts{context_, *sync_, [weak = self_.weak()](SyncAlert alert) {
                              if (auto* self = weak.get()) {
                                  self->showAlert(std::move(alert));
                              }
                          }};
    const auto remove = [this](const BackupEntry& entry) { showDeleteConfirm(entry); };
    add({QStringLiteral("iCloud Sync"), Icon::cloud, new CloudSyncForm(parts, this)});
    add({QStringLiteral("Automatic Backup"), Icon::clockBack, new AutomaticBackupForm(parts, this)});
    add({QStringLiteral("Backup History"), Icon::archive, new BackupHistory(parts, remove, this)});
    add({QStringLiteral("Export / Import"), Icon::transfer, new ExportImportForm(parts, this)});
}

void SyncSettingsView::add(const SyncSection& section) {
    addSection(section.title, section.icon, grid::kMedium)->addRow(section.content);
}

void SyncSettingsView::showDeleteConfirm(const BackupEntry& entry) {
    if (entryToDelete_) {
        return; // the sheet is open
    }
    entryToDelete_ = entry;
    auto* sheet = new AlertSheet(context_.theme, QStringLiteral("deleteBackupConfirmation"),
                                 {Icon::warning, &Palette::red}, QStringLiteral("Delete this backup?"), this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->setMessage(displayLine(entry.name()));
    auto* cancel = sheet->addButton(QStringLiteral("Cancel"), ButtonRole::plain,
                                    QStringLiteral("deleteBackupCancelButton"), QDialog::Rejected);
    sheet->addButton(QStringLiteral("Delete"), ButtonRole::destructive,
                     QStringLiteral("deleteBackupConfirmButton"), QDialog::Accepted);
    connect(sheet, &QDialog::accepted, this, [this] { deleteConfirmed(); });
    connect(sheet, &QDialog::finished, this, [this] { entryToDelete_.reset(); });
    cancel->setFocus();
    sheet->open();
}

void SyncSettingsView::deleteConfirmed() {
    if (const auto entry = std::exchange(entryToDelete_, std::nullopt)) {
        sync_->deleteBackup(*entry);
    }
}

void SyncSettingsView::showAlert(SyncAlert alert) {
    alerts_.push_back(std::move(alert));
    if (alerts_.size() == 1) {
        openAlert();
    }
}

void SyncSettingsView::openAlert() {
    const SyncAlert& alert = alerts_.front();
    const AlertSheet::Mark mark = alert.succeeded ? AlertSheet::Mark{Icon::checkCircle, &Palette::green}
                                                  : AlertSheet::Mark{Icon::warning, &Palette::orange};
    auto* sheet = new AlertSheet(context_.theme, QStringLiteral("syncAlert"), mark, alert.alertTitle, this);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->setMessage(alert.alertMessage);
    auto* okay = sheet->addButton(QStringLiteral("OK"), ButtonRole::prominent,
                                  QStringLiteral("syncAlertButton"), QDialog::Accepted);
    okay->setFocus();
    connect(sheet, &QDialog::finished, this, [this] {
        alerts_.pop_front();
        if (!alerts_.empty()) {
            openAlert();
        }
    });
    sheet->open();
    announceAlert(*sheet);
}

} // namespace fernwick
