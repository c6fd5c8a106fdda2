#include "screens/main/DeleteConfirmation.h"

#include "screens/theme/DisplayText.h"

#include <QPushButton>

#include <utility>

namespace fernwick {

DeleteConfirmation::DeleteConfirmation(const Theme& theme, std::string_view name,
                                       std::function<void()> onDelete, QWidget* parent)
    : AlertSheet(theme, QStringLiteral("deleteConfirmation"), {Icon::warning, &Palette::red},
                 QStringLiteral("Delete Tunnel"), parent) {
    setName(name);
    auto* cancel = addButton(QStringLiteral("Cancel"), ButtonRole::plain, QStringLiteral("deleteCancelButton"),
                             QDialog::Rejected);
    addButton(QStringLiteral("Delete"), ButtonRole::destructive, QStringLiteral("deleteConfirmButton"),
              QDialog::Accepted);
    connect(this, &QDialog::accepted, this, std::move(onDelete));
    cancel->setFocus();
}

void DeleteConfirmation::setName(std::string_view name) {
    setMessage(QStringLiteral("Are you sure you want to delete \"%1\"? This action cannot be undone.")
                   .arg(displayLine(name)));
}

} // namespace fernwick
