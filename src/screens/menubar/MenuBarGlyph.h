// The three symbols of the menu bar, drawn on grids of 16 and of 22 pixels, so that the lines lie on whole
// pixels in every size that trays ask for. Nobody tells what colour a tray is: the ink suits the desktop's
// appearance, and a thin edge in the opposite shade keeps it readable where the tray is of the other kind.
// Threads: main thread only, after a theme was made.
#pragma once

#include "screens/theme/Palette.h"

#include <QIcon>
#include <QImage>

namespace fernwick {

enum class MenuBarSymbol {
    networkSlash, // nothing is up
    network,      // a tunnel is up
    networkShield // a tunnel is in error
};

// The symbol, `side` pixels wide and high.
[[nodiscard]] QImage menuBarGlyph(MenuBarSymbol symbol, Appearance appearance, int side);

// The symbol in all the sizes that trays ask for.
[[nodiscard]] QIcon menuBarIcon(MenuBarSymbol symbol, Appearance appearance);

} // namespace fernwick
