// The root of the main window: the sidebar beside the detail column, the state that both share, the sheet that
// creates a tunnel and the question before one is deleted.
// Threads: main thread only. Bursts of changes are shown in one go, on the next turn of the event loop.
#pragma once

#include "screens/Coalescer.h"
#include "screens/main/ContentState.h"
#include "screens/main/MainWindowContext.h"

#include <QPointer>
#include <QWidget>

#include <unordered_set>
#include <vector>

class QSplitter;
class QStackedWidget;

namespace fernwick {

class DeleteConfirmation;
class DetailHeader;
class SidebarView;
class TunnelDetailView;

class ContentView final : public QWidget {
public:
    static constexpr int kDetailMinimumWidth = 500;
    static constexpr int kDetailMinimumHeight = 400;

    ContentView(const MainWindowContext& context, QWidget* parent);

    [[nodiscard]] const ContentState& state() const { return state_; }

    // Shows or hides the sidebar.
    void toggleSidebar();

    // Brings the keyboard to the search field, showing the sidebar if it is hidden.
    void focusSearch();

    // Opens the sheet for a new tunnel, unless it is up.
    void showAddSheet();

private:
    void build();
    QWidget* buildDetail();
    void observe();
    void refresh();
    void showDetail(const Tunnel& tunnel);
    void refreshStatuses();
    void select(std::optional<support::Uuid> id);
    void confirmDelete(const Tunnel& tunnel);
    void deleteConfirmed();
    void openProxyRules() const;

    MainWindowContext context_;
    ContentState state_;
    QSplitter* columns_ = nullptr;
    SidebarView* sidebar_ = nullptr;
    DetailHeader* header_ = nullptr;
    QStackedWidget* pages_ = nullptr;
    TunnelDetailView* detail_ = nullptr;    // made when it is first shown
    QPointer<DeleteConfirmation> question_; // while it is up
    std::unordered_set<support::Uuid> changedStatuses_;
    Coalescer refreshSoon_;
    Coalescer refreshStatusesSoon_;
    std::vector<support::Subscription> subscriptions_;
};

} // namespace fernwick
