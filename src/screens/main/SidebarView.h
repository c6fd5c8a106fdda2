// The left column of the main window: counts, search, tag strip and the list of tunnels.
// Threads: main thread only.
#pragma once

#include "screens/main/ContentState.h"
#include "screens/main/MainWindowContext.h"
#include "screens/main/TunnelListModel.h"
#include "screens/main/TunnelRules.h"

#include <QWidget>

#include <unordered_set>

class QStackedWidget;

namespace fernwick {

class EmptyListView;
class SearchRow;
class StatBadge;
class TagStrip;
class TunnelListView;

// What the sidebar tells the main window.
struct SidebarCallbacks {
    std::function<void()> onAdd;
    std::function<void(const Tunnel&)> onDelete;
    std::function<void()> onProxyRules;
    std::function<void(std::optional<support::Uuid>)> onSelect;
    std::function<void(std::string)> onSearch;
    std::function<void(std::optional<TunnelTag>)> onTag;
};

class SidebarView final : public QWidget {
public:
    static constexpr int kMinimumWidth = 220;
    static constexpr int kIdealWidth = 260;
    static constexpr int kMaximumWidth = 320;

    SidebarView(const MainWindowContext& context, SidebarCallbacks callbacks, QWidget* parent);

    // Shows these tunnels and the state that goes with them.
    void show(const TunnelSelection& filteredTunnels, const TunnelStatistics& statistics,
              const ContentState& state);

    // Repaints the rows of these tunnels.
    void showStatuses(const std::unordered_set<support::Uuid>& ids, const TunnelStatistics& statistics);

    // Shows changed tags in the rows.
    void showTags();

    // Give the keyboard to the search field, or to the list.
    void focusSearch();
    void focusList();

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QWidget* buildToolbar();
    QWidget* buildStatistics();
    QWidget* buildList();
    void tellSelection();
    void showSelection(const std::optional<support::Uuid>& selected);
    void openMenu(int row, QPoint where);

    MainWindowContext context_;
    SidebarCallbacks callbacks_;
    TunnelListModel* model_;
    TunnelListView* list_ = nullptr;
    StatBadge* total_ = nullptr;
    StatBadge* active_ = nullptr;
    SearchRow* search_ = nullptr;
    TagStrip* strip_ = nullptr;
    QWidget* stripDivider_ = nullptr;
    QStackedWidget* pages_ = nullptr;
    EmptyListView* empty_ = nullptr;
    bool showing_ = false; // while the list is filled: what it chooses by itself is not the user's choice
};

} // namespace fernwick
