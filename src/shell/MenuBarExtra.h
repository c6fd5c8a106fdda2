// The application in the menu bar: an icon that is there as long as the application runs and the desktop has a
// place for it, the popover that a click opens, and the menu of a right click. Nothing of the popover is built
// before the first click. Threads: main thread only.
#pragma once

#include "platform/TrayHost.h"
#include "screens/menubar/MenuBarCommands.h"
#include "screens/menubar/MenuBarIconView.h"
#include "screens/menubar/TunnelTally.h"
#include "support/Weak.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <memory>
#include <optional>

namespace fernwick {

class MenuBarExtraWindow;

class MenuBarExtra {
public:
    // How long after the start a place for the icon is looked for: the main window comes first.
    static constexpr platform::Duration kStartDelay{200};

    // How long after the popover lost the keyboard a click on the icon does not open it again: it is the click
    // that took the keyboard away.
    static constexpr platform::Duration kReopenDelay{250};

    // The references, those in the context included, outlive it.
    MenuBarExtra(MenuBarContext context, platform::TrayHost& host);
    MenuBarExtra(const MenuBarExtra&) = delete;
    MenuBarExtra& operator=(const MenuBarExtra&) = delete;
    ~MenuBarExtra();

    // Looks for a place soon, and takes it whenever it comes. When there is none at first, standard error says
    // so. Once.
    void start();

    // Takes the icon and the popover away for good.
    void remove();

    // The icon; null until there is a place for it.
    [[nodiscard]] QSystemTrayIcon* icon() const { return icon_.get(); }

    // The popover's window; null before its first use.
    [[nodiscard]] MenuBarExtraWindow* window() const { return window_.get(); }

private:
    void showIcon();
    void fillMenu();
    void activated(QSystemTrayIcon::ActivationReason reason);
    void openPopover();

    MenuBarCommands commands_;
    platform::TrayHost& host_;
    bool removed_ = false;
    bool justClosed_ = false;
    std::unique_ptr<TunnelTally> tally_; // these four from the icon's coming on
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    std::unique_ptr<MenuBarIconView> iconView_;
    std::unique_ptr<MenuBarExtraWindow> window_;
    support::Subscription appeared_;
    support::Subscription absent_;
    support::WeakSource<MenuBarExtra> self_;
};

} // namespace fernwick
