#include "shell/WindowTraits.h"

#include <QWidget>

#include <algorithm>
#include <array>

namespace fernwick {

WindowTraits traitsOf(const QWidget& window) {
    const auto type = window.windowType();
    // What the window manager never hears of is none of the user's windows: the toolkit's icon in an X tray.
    const bool managed = !window.windowFlags().testFlag(Qt::BypassWindowManagerHint);
    const bool ordinary = managed && (type == Qt::Window || type == Qt::Widget);
    const bool takesFocus = managed && !window.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus);
    const bool isPanel = type == Qt::Dialog || type == Qt::Sheet || type == Qt::Drawer || type == Qt::Tool ||
                         type == Qt::Popup || type == Qt::ToolTip || type == Qt::SplashScreen;
    const bool neverKey = type == Qt::ToolTip || type == Qt::SplashScreen || type == Qt::Desktop;
    return {.canBecomeMain = ordinary,
            .canBecomeKey = takesFocus && !neverKey,
            .isPanel = isPanel,
            .className = window.metaObject()->className(),
            .title = window.windowTitle().toStdString()};
}

bool canBeAdopted(const WindowTraits& window) {
    return window.canBecomeMain && window.canBecomeKey && !window.isPanel &&
           window.className != "fernwick::MenuBarExtraWindow" &&
           window.className != "fernwick::StatusBarWindow" && window.title != kSettingsTitle;
}

bool canStandIn(const WindowTraits& window) {
    static constexpr std::array<std::string_view, 3> kAuxiliary{"MenuBarExtra", "StatusBar", "Panel"};
    const bool auxiliary =
        std::ranges::any_of(kAuxiliary, [&](std::string_view part) { return window.className.contains(part); });
    return !auxiliary && window.title != kSettingsTitle && !window.title.empty() && window.canBecomeKey;
}

} // namespace fernwick
