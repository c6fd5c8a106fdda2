#include "screens/settings/BackupHistory.h"

#include "screens/settings/BackupListView.h"
#include "screens/settings/DisclosureButton.h"

#include <QLabel>

#include <utility>

namespace fernwick {

BackupHistory::BackupHistory(SyncParts parts, std::function<void(const BackupEntry&)> remove, QWidget* parent)
    : SyncForm(std::move(parts), parent),
      disclosure_(new DisclosureButton(theme(), this)),
      list_(new BackupListView(
          theme(), {[this](const BackupEntry& entry) { restore(entry); }, std::move(remove)}, this)) {
    disclosure_->setObjectName(QStringLiteral("backupDisclosure"));
    disclosure_->setAccessibleDescription(QStringLiteral("Backup History"));
    connect(disclosure_, &QAbstractButton::toggled, this, [this] { refresh(); });
    addRow(disclosure_);
    addRow(list_);
    empty_ = newText(QStringLiteral("There are no backups in the folder."));
    empty_->setObjectName(QStringLiteral("noBackups"));
    addRow(empty_);
    changed_ = sync().changed.connect([this] { refresh(); });
    refresh();
}

bool BackupHistory::showBackupList() const {
    return disclosure_->isChecked();
}

// A list that is folded is not filled: nobody looks at it.
void BackupHistory::refresh() {
    const auto& entries = sync().state().backupEntries;
    disclosure_->setText(QStringLiteral("%1 backup%2")
                             .arg(entries.size())
                             .arg(entries.size() == 1 ? QString() : QStringLiteral("s")));
    const bool listed = showBackupList() && !entries.empty();
    if (listed) {
        list_->showEntries(entries);
    } else if (list_->isAncestorOf(window()->focusWidget())) {
        disclosure_->setFocus(Qt::OtherFocusReason);
    }
    list_->setVisible(listed);
    empty_->setVisible(showBackupList() && entries.empty());
}

// One at a time: what a second click would start is what runs already.
void BackupHistory::restore(const BackupEntry& entry) {
    if (std::exchange(restoring_, true)) {
        return;
    }
    const auto through = [weak = self_.weak()] {
        if (auto* self = weak.get()) {
            self->restoring_ = false;
        }
    };
    sync().restoreBackup(entry.url,
                         told(through, QStringLiteral("Restored"), QStringLiteral("Restore Failed")));
}

} // namespace fernwick
