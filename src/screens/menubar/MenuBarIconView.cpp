#include "screens/menubar/MenuBarIconView.h"

#include <utility>

namespace fernwick {

MenuBarIconView::MenuBarIconView(Theme& theme, TunnelTally& tally, Show show)
    : theme_(theme), tally_(tally), show_(std::move(show)) {
    subscriptions_.push_back(tally.changed.connect([this] { refresh(); }));
    subscriptions_.push_back(theme.changed.connect([this] { refresh(); }));
    refresh();
}

MenuBarSymbol MenuBarIconView::symbolFor(const TunnelTally& tally) {
    if (tally.hasError()) {
        return MenuBarSymbol::networkShield;
    }
    return tally.activeTunnelCount() > 0 ? MenuBarSymbol::network : MenuBarSymbol::networkSlash;
}

void MenuBarIconView::refresh() {
    Look look{symbolFor(tally_), theme_.appearance(), QString::fromStdString(tally_.summaryText())};
    if (look == shown_) {
        return;
    }
    const bool drawsAnew = !shown_ || shown_->symbol != look.symbol || shown_->appearance != look.appearance;
    shown_ = std::move(look);
    show_(*shown_, drawsAnew);
}

} // namespace fernwick
