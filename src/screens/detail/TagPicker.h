// One chip per tag; a click puts the tag on the tunnel or takes it off.
// Threads: main thread only.
#pragma once

#include "catalogue/TagManager.h"
#include "screens/theme/Theme.h"

#include <QAbstractButton>

#include <functional>
#include <vector>

namespace fernwick {

// A chip: filled with the tag's colour while the tag is chosen.
class TagChip final : public QAbstractButton {
public:
    // `toggled` is called when the user chose the tag or took it off.
    TagChip(const Theme& theme, const TunnelTag& tag, std::function<void()> toggled, QWidget* parent);

    // Says whether the tag is chosen, without calling back.
    void setChosen(bool chosen);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    std::string colorHex_;
};

class TagPicker final : public QWidget {
public:
    // `toggled` is called with the id of the tag whose chip was clicked. The manager outlives the picker.
    TagPicker(const Theme& theme, TagManager& tags, std::function<void(const support::Uuid&)> toggled,
              QWidget* parent);

    // Shows these as chosen. Ids of tags that are gone are not shown.
    void showSelected(const std::vector<support::Uuid>& selectedTagIDs);

private:
    void rebuild();

    const Theme& theme_;
    TagManager& tags_;
    std::function<void(const support::Uuid&)> toggled_;
    std::vector<support::Uuid> selectedTagIDs_;
    std::vector<std::pair<support::Uuid, TagChip*>> chips_;
    support::Subscription tagsChanged_;
};

// Takes the tag off if it is there, and appends it otherwise.
void toggleTag(std::vector<support::Uuid>& selectedTagIDs, const support::Uuid& tagID);

} // namespace fernwick
