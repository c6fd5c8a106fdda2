// The tags one below the other, each with a swatch in its colour, and on the selected row the buttons to edit
// and to delete it. Only what can be seen is drawn. Threads: main thread only.
#pragma once

#include "catalogue/TunnelTag.h"
#include "screens/routing/RowListModel.h"
#include "screens/theme/Theme.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

class QListView;

namespace fernwick {

class EditorFrame;

// What the row shows of a tag.
struct TagRow {
    support::Uuid id;
    std::string name;
    std::string colorHex;

    bool operator==(const TagRow&) const = default;

    [[nodiscard]] QString title() const;
    [[nodiscard]] QString spoken() const { return title(); }
};

using TagListModel = RowListModel<TagRow>;

class TagListView final : public QWidget {
public:
    struct Callbacks {
        std::function<void(std::optional<support::Uuid>)> selected; // by the user
        std::function<void(const support::Uuid&)> edit;
        std::function<void(const support::Uuid&)> remove;
    };

    TagListView(const Theme& theme, Callbacks callbacks, QWidget* parent);

    // Shows these tags with that one selected, if it is among them. Does not call back.
    void showTags(const std::vector<TunnelTag>& tags, const std::optional<support::Uuid>& selected);

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QWidget* buildActions();
    [[nodiscard]] std::optional<support::Uuid> selectedID() const;
    void ask(const std::function<void(const support::Uuid&)>& what);
    void placeActions();

    const Theme& theme_;
    Callbacks callbacks_;
    TagListModel* model_;
    QListView* list_;
    EditorFrame* frame_;
    QWidget* actions_;
    bool showing_ = false;
};

} // namespace fernwick
