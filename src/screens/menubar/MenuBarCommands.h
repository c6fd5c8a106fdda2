// What can be commanded from the menu bar: the footer's entries, which are also the icon's own menu, and the
// buttons over the list. Threads: main thread only.
#pragma once

#include "screens/menubar/MenuBarContext.h"
#include "support/Weak.h"

#include <QString>

#include <functional>
#include <vector>

namespace fernwick {

// One entry of the footer.
struct MenuBarEntry {
    Icon icon;
    QString label;
    QString objectName;
    bool isDestructive = false;
    std::function<void()> action;
};

class MenuBarCommands {
public:
    // How long the popover has to fall away before another window takes the front.
    static constexpr platform::Duration kCloseDelay{150};

    explicit MenuBarCommands(MenuBarContext context);
    MenuBarCommands(const MenuBarCommands&) = delete;
    MenuBarCommands& operator=(const MenuBarCommands&) = delete;

    // The entries that can do something, from the top down; the last one ends the application if that is
    // offered. Their actions do nothing when the commands are gone.
    [[nodiscard]] std::vector<MenuBarEntry> entries() const;

    // Starts every tunnel that is neither connecting nor connected, in order; those in error start again.
    void connectAll();

    // Stops every tunnel, whatever its state.
    void disconnectAll();

    // Stops the tunnel if it is active, else starts it. Nothing happens when there is none of that id.
    void toggle(const support::Uuid& id);

    [[nodiscard]] const MenuBarContext& context() const { return context_; }

private:
    void runAfterPopoverCloses(std::function<void()> action);
    void openProxyRules();

    MenuBarContext context_;
    support::WeakSource<MenuBarCommands> self_;
};

} // namespace fernwick
