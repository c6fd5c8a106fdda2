#include "screens/settings/TagsSettingsView.h"

#include "screens/settings/ColorWell.h"
#include "screens/settings/TagEditSheet.h"
#include "screens/settings/TagListView.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"
#include "screens/theme/TagColors.h"
#include "screens/theme/TextField.h"
#include "support/Text.h"

#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace fernwick {

namespace {

constexpr QColor kBlue(0x0A, 0x84, 0xFF); // the one of the default tags
constexpr int kNarrowestName = 180;
constexpr int kWidestName = 240;

} // namespace

TagsSettingsView::TagsSettingsView(const Theme& theme, TagManager& tags, QWidget* parent)
    : QWidget(parent), theme_(theme), tags_(tags) {
    setObjectName(QStringLiteral("tagsTab"));
    auto* intro = makeCaption(QStringLiteral("Manage tags to organize your tunnels."), theme.font(13), this);
    intro->setWordWrap(true);
    count_ = makeCaption(QString(), theme.font(12), this);
    count_->setObjectName(QStringLiteral("tagCount"));
    list_ = new TagListView(theme,
                            {[this](std::optional<support::Uuid> id) { selectedTagID_ = id; },
                             [this](const support::Uuid& id) { edit(id); },
                             [this](const support::Uuid& id) { remove(id); }},
                            this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(grid::kLarge, grid::kMedium, grid::kLarge, grid::kLarge);
    layout->setSpacing(grid::kTight);
    layout->addWidget(intro);
    layout->addWidget(count_);
    layout->addSpacing(grid::kSmall);
    layout->addWidget(list_, 1);
    layout->addSpacing(grid::kSmall);
    layout->addWidget(buildNewTag());
    tagsChanged_ = tags.changed.connect([this] { refresh(); });
    refresh();
}

QWidget* TagsSettingsView::buildNewTag() {
    auto* row = new QWidget(this);
    newTagColor_ = new ColorWell(theme_, QStringLiteral("New tag color"), kBlue, row);
    newTagColor_->setObjectName(QStringLiteral("newTagColorWell"));
    nameField_ = new TextField(theme_, [this](std::string text) { newTagName_ = std::move(text); }, row);
    nameField_->setObjectName(QStringLiteral("newTagNameField"));
    nameField_->setAccessibleName(QStringLiteral("New tag name"));
    nameField_->setPlaceholderText(QStringLiteral("New tag name"));
    nameField_->setMinimumWidth(kNarrowestName);
    nameField_->setMaximumWidth(kWidestName);
    auto* button = makeButton(QStringLiteral("Add"), ButtonRole::plain, QStringLiteral("addTagButton"), row);
    connect(nameField_, &QLineEdit::returnPressed, this, [this] { add(); });
    connect(button, &QPushButton::clicked, this, [this] { add(); });
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(newTagColor_);
    layout->addWidget(nameField_, 1);
    layout->addWidget(button);
    layout->addStretch(1);
    return row;
}

void TagsSettingsView::refresh() {
    const auto count = tags_.tags().size();
    count_->setText(QStringLiteral("%1 tag%2 \u2014 select a tag to edit or delete")
                        .arg(count)
                        .arg(count == 1 ? QString() : QStringLiteral("s")));
    list_->showTags(tags_.tags(), selectedTagID_);
}

void TagsSettingsView::add() {
    const std::string name(support::trimBlanks(newTagName_));
    if (name.empty() || std::ranges::find(tags_.tags(), name, &TunnelTag::name) != tags_.tags().end()) {
        return;
    }
    tags_.tags().push_back({support::Uuid::random(), name, tagColorHex(newTagColor_->color())});
    tags_.save();
    nameField_->clear();
    newTagColor_->setColor(kBlue);
}

void TagsSettingsView::edit(const support::Uuid& id) {
    if (const auto* tag = tags_.find(id)) {
        auto* sheet = new TagEditSheet(theme_, tags_, *tag, this);
        sheet->open();
    }
}

void TagsSettingsView::remove(const support::Uuid& id) {
    if (selectedTagID_ == id) {
        selectedTagID_.reset();
    }
    std::erase_if(tags_.tags(), [&id](const TunnelTag& tag) { return tag.id == id; });
    tags_.save();
}

} // namespace fernwick
