// One tab of the window of proxies and rules: a searchable list of records on the left, and the chosen one
// beside it. What the records are is said by the tabs that derive from it. Threads: main thread only.
#pragma once

#include "screens/routing/ListColumn.h"
#include "screens/routing/RoutingContext.h"
#include "support/Signal.h"

#include <QSplitter>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class QAbstractItemDelegate;
class QAbstractItemModel;
class QMenu;

namespace fernwick {

class DetailPanel;

class RecordTab : public QSplitter {
public:
    // The record that is chosen. A search that hides its row leaves it chosen.
    [[nodiscard]] const std::optional<support::Uuid>& selectedID() const { return selectedID_; }

    // Opens the sheet for a new record.
    virtual void add() = 0;

    // Give the keyboard to the search field, or to the list.
    void focusSearch();
    void focusList();

protected:
    // What stands in place of the list while there is no record at all.
    struct Empty {
        Icon icon;
        QString title;
        QString subtitle;
    };

    // `tunnels` outlives the tab.
    RecordTab(const RoutingContext& context, const TunnelNames& tunnels, QWidget* parent);

    // Puts the list together, and then the panel: it is made after the list, so that the tab key reaches it
    // after the list. `toggle` is what the space bar does to a row, if anything.
    void buildList(const ListColumnTexts& texts, Empty empty, QAbstractItemModel& model,
                   QAbstractItemDelegate& rows, std::function<void(int)> toggle = nullptr);
    void addPanel(DetailPanel& panel);

    // Shows the records, the selection and the panel as they are now.
    void refresh();

    // Shows the panel as it is now. A chosen record that is no more is not chosen any longer.
    void refreshPanel();

    // Whether a sheet is open over the window. It is raised then, since one at a time is enough.
    [[nodiscard]] bool raiseOpenSheet() const;

    RoutingContext context_;
    const TunnelNames& tunnels_;
    std::vector<support::Subscription> subscriptions_;

private:
    // Fills the model with the records that the search keeps; returns how many there are without it.
    virtual std::size_t fillRows(std::string_view searchText) = 0;
    [[nodiscard]] virtual support::Uuid idOf(int row) const = 0;
    [[nodiscard]] virtual int rowOf(const support::Uuid& id) const = 0; // -1 when it is not in the list
    [[nodiscard]] virtual QString countText() const = 0;
    virtual bool showPanel(const std::optional<support::Uuid>& id) = 0; // whether there is such a record
    virtual void editRecord(const support::Uuid& id) = 0;
    virtual void removeRecord(const support::Uuid& id) = 0;
    virtual void moveRecord(std::size_t from, std::size_t before) = 0; // by their places in the list shown
    virtual void addMenuItems(QMenu& menu, const support::Uuid& id) = 0;

    ListColumnCallbacks callbacks();
    ListGestures gestures();
    void showSelection();
    void takeSelection();
    void remove(const support::Uuid& id);
    void openMenu(int row, QPoint where);

    ListColumn* column_ = nullptr;
    Empty empty_{};
    std::optional<support::Uuid> selectedID_;
    std::string searchText_;
    bool showing_ = false; // while the list is filled: what it chooses by itself is not the user's choice
};

} // namespace fernwick
