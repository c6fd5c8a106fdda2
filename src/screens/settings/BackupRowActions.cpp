#include "screens/settings/BackupRowActions.h"

#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QToolButton>

#include <utility>

namespace fernwick {

namespace {

constexpr int kButtonHeight = 26;
constexpr int kIconSize = 16;

} // namespace

BackupRowActions::BackupRowActions(const Theme& theme, Callbacks callbacks, QWidget* parent)
    : QWidget(parent),
      restore_(makeButton(QStringLiteral("Restore"), ButtonRole::plain, QStringLiteral("restoreButton"), this)),
      remove_(makeIconButton(theme, Icon::trash, QStringLiteral("Delete backup"),
                             QStringLiteral("deleteBackupButton"), this)) {
    restore_->setFont(theme.font(12));
    restore_->setFixedHeight(std::max(kButtonHeight, restore_->fontMetrics().height() + grid::kTight));
    remove_->setFixedSize(kButtonHeight, kButtonHeight);
    remove_->setIconSize(QSize(kIconSize, kIconSize));
    connect(restore_, &QPushButton::clicked, this,
            [this, restore = std::move(callbacks.restore)] { restore(support::Uuid(id_)); });
    connect(remove_, &QToolButton::clicked, this,
            [this, remove = std::move(callbacks.remove)] { remove(support::Uuid(id_)); });
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight);
    layout->addWidget(restore_);
    layout->addWidget(remove_);
    setReachable(false);
}

void BackupRowActions::showRow(const BackupRow& row) {
    if (id_ == row.id && name_ == row.name) {
        return;
    }
    id_ = row.id;
    name_ = row.name;
    restore_->setAccessibleName(QStringLiteral("Restore ") + name_);
    remove_->setAccessibleName(QStringLiteral("Delete ") + name_);
}

void BackupRowActions::setReachable(bool reachable) {
    const auto policy = reachable ? Qt::StrongFocus : Qt::ClickFocus;
    restore_->setFocusPolicy(policy);
    remove_->setFocusPolicy(policy);
}

bool BackupRowActions::hasKeyboard() const {
    return isAncestorOf(window()->focusWidget());
}

} // namespace fernwick
