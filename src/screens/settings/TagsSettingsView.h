// The tab "Tags": the list of tags, and a row that adds one. Threads: main thread only.
#pragma once

#include "catalogue/TagManager.h"
#include "screens/theme/Theme.h"

#include <QWidget>

#include <optional>
#include <string>

class QLabel;

namespace fernwick {

class ColorWell;
class TagListView;
class TextField;

class TagsSettingsView final : public QWidget {
public:
    // Both outlive the view.
    TagsSettingsView(const Theme& theme, TagManager& tags, QWidget* parent);

    [[nodiscard]] const std::optional<support::Uuid>& selectedTagID() const { return selectedTagID_; }

private:
    [[nodiscard]] QWidget* buildNewTag();
    void refresh();
    void add();
    void edit(const support::Uuid& id);
    void remove(const support::Uuid& id);

    const Theme& theme_;
    TagManager& tags_;
    std::optional<support::Uuid> selectedTagID_;
    std::string newTagName_;
    QLabel* count_ = nullptr;
    TagListView* list_ = nullptr;
    ColorWell* newTagColor_ = nullptr;
    TextField* nameField_ = nullptr;
    support::Subscription tagsChanged_;
};

} // namespace fernwick
