#include "screens/settings/TagEditSheet.h"

#include "screens/settings/ColorWell.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"
#include "screens/theme/TagColors.h"
#include "screens/theme/TextField.h"
#include "support/Text.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr int kMargin = 20;

} // namespace

TagEditSheet::TagEditSheet(const Theme& theme, TagManager& tags, TunnelTag tag, QWidget* parent)
    : QDialog(parent, Qt::Sheet),
      theme_(theme),
      tags_(tags),
      editingTag_(std::move(tag)),
      editName_(editingTag_.name) {
    setObjectName(QStringLiteral("tagEditSheet"));
    setWindowTitle(QStringLiteral("Edit Tag"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin - grid::kTight, kMargin, kMargin - grid::kTight);
    layout->setSpacing(grid::kLarge);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(makeLabel(windowTitle(), theme.font(15, QFont::DemiBold), this));
    auto* fields = buildFields();
    fields->setFixedWidth(kWidth - 2 * kMargin);
    layout->addWidget(fields);
    layout->addWidget(buildButtons());
}

QWidget* TagEditSheet::buildFields() {
    auto* fields = new QWidget(this);
    editColor_ = new ColorWell(theme_, QStringLiteral("Tag color"),
                               tagColor(editingTag_.colorHex, theme_.colors()), fields);
    editColor_->setObjectName(QStringLiteral("editTagColorWell"));
    auto* name = new TextField(theme_, [this](std::string text) { editName_ = std::move(text); }, fields);
    name->setObjectName(QStringLiteral("editTagNameField"));
    name->setAccessibleName(QStringLiteral("Tag name"));
    name->setPlaceholderText(QStringLiteral("Tag name"));
    name->showStored(editName_, true);
    auto* layout = new QHBoxLayout(fields);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(editColor_);
    layout->addWidget(name, 1);
    name->setFocus();
    // The name is there to be typed over; of a long one the start is shown.
    const auto length = static_cast<int>(name->text().size());
    name->setSelection(length, -length);
    return fields;
}

QWidget* TagEditSheet::buildButtons() {
    auto* buttons = new QWidget(this);
    auto* cancel =
        makeButton(QStringLiteral("Cancel"), ButtonRole::plain, QStringLiteral("editTagCancelButton"), buttons);
    cancel->setAutoDefault(true); // Return presses the button that has the keyboard
    auto* saving =
        makeButton(QStringLiteral("Save"), ButtonRole::prominent, QStringLiteral("editTagSaveButton"), buttons);
    saving->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(saving, &QPushButton::clicked, this, [this] { save(); });
    auto* layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addStretch();
    layout->addWidget(cancel);
    layout->addWidget(saving);
    return buttons;
}

void TagEditSheet::save() {
    const auto name = support::trimBlanks(editName_);
    if (name.empty()) {
        return;
    }
    auto& tags = tags_.tags();
    const auto found = std::ranges::find(tags, editingTag_.id, &TunnelTag::id);
    if (found != tags.end()) {
        found->name = name;
        found->colorHex = tagColorHex(editColor_->color());
        tags_.save();
    }
    accept();
}

} // namespace fernwick
