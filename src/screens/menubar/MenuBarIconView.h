// The icon in the menu bar: one of three symbols in one colour and nothing else, no number and no text. It
// keeps an icon and its tool tip as the tunnels and the appearance are, and tells of a change only when what is
// seen changes. Threads: main thread only.
#pragma once

#include "screens/menubar/MenuBarGlyph.h"
#include "screens/menubar/TunnelTally.h"
#include "screens/theme/Theme.h"

#include <QString>

#include <functional>
#include <optional>

namespace fernwick {

class MenuBarIconView {
public:
    // What the icon shows, and what it says when the pointer rests on it.
    struct Look {
        MenuBarSymbol symbol;
        Appearance appearance;
        QString toolTip;

        bool operator==(const Look&) const = default;
    };

    // Is called with a look, and whether the icon itself differs from the one before: a drawing is dear, and
    // goes to the desktop whole, while the tool tip counts tunnels and changes all the time.
    using Show = std::function<void(const Look& look, bool drawsAnew)>;

    // Calls `show` at once, and with every other look after it. The theme and the tally outlive the view.
    MenuBarIconView(Theme& theme, TunnelTally& tally, Show show);
    MenuBarIconView(const MenuBarIconView&) = delete;
    MenuBarIconView& operator=(const MenuBarIconView&) = delete;

    // The symbol for the tunnels as they are: an error goes before everything else.
    [[nodiscard]] static MenuBarSymbol symbolFor(const TunnelTally& tally);

private:
    void refresh();

    Theme& theme_;
    TunnelTally& tally_;
    Show show_;
    std::optional<Look> shown_;
    std::vector<support::Subscription> subscriptions_;
};

} // namespace fernwick
