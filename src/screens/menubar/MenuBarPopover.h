// What a click on the menu-bar icon shows: the summary, buttons for all tunnels, a row for each, and the
// footer. While it is hidden it hears of nothing and does nothing. Threads: main thread only. Bursts of changes
// are shown in one go, on the next turn of the event loop.
#pragma once

#include "screens/Coalescer.h"
#include "screens/menubar/MenuBarCommands.h"
#include "screens/menubar/TunnelTally.h"

#include <QLabel>
#include <QWidget>

#include <functional>
#include <unordered_set>
#include <vector>

class QVBoxLayout;

namespace fernwick {

class PopoverTunnelList;
class PopoverTunnelModel;

class MenuBarPopover final : public QWidget {
public:
    static constexpr int kWidth = 290; // unless the desktop's text is enlarged

    // Both outlive the popover.
    MenuBarPopover(MenuBarCommands& commands, TunnelTally& tally, QWidget* parent);

    // Called when an entry of the footer was chosen, before its action.
    std::function<void()> onEntryChosen;

    // Takes everything over as it is now. To be called before it is shown.
    void refresh();

    // Keeps the whole of it within that height by showing fewer rows at a time.
    void setHeightLimit(int limit);

    // Puts the keyboard where the arrows reach the tunnels, without lighting any; no row is lit any more.
    void focusAfresh();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void addHeader(QVBoxLayout& column);
    void addActions(QVBoxLayout& column);
    void addTunnels(QVBoxLayout& column);
    void addFooter(QVBoxLayout& column);
    void refreshSummary();
    void refreshTunnels();

    MenuBarCommands& commands_;
    TunnelTally& tally_;
    PopoverTunnelModel* rows_;
    QLabel* summary_ = nullptr;
    QWidget* empty_ = nullptr;
    PopoverTunnelList* list_ = nullptr;
    int heightLimit_ = 0; // none
    std::unordered_set<support::Uuid> changedStatuses_;
    Coalescer refreshSoon_;
    Coalescer refreshStatusesSoon_;
    std::vector<support::Subscription> subscriptions_; // while it is shown
};

} // namespace fernwick
