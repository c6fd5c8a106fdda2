// The named colours of both appearances. Screens ask for a colour by what it means, never by its number.
// Threads: any.
#pragma once

#include <QColor>
#include <QPalette>

namespace fernwick {

enum class Appearance { light, dark };

struct Palette {
    // Grounds, from the back to the front.
    QColor window;  // behind the detail column and in dialogs
    QColor sidebar; // behind the list of tunnels
    QColor surface; // cards, lists of text
    QColor field;   // what can be typed into
    QColor popup;   // menus and tool tips

    // Text.
    QColor text;
    QColor secondary;   // captions and labels
    QColor placeholder; // in an empty field
    QColor onAccent;    // on an accent or a red ground

    // What invites or answers the pointer.
    QColor accent;
    QColor control;   // ground of a plain button
    QColor hover;     // laid over what the pointer is on
    QColor pressed;   // laid over what is held down
    QColor selection; // ground of the chosen row

    // Lines.
    QColor separator;
    QColor border;

    // Meaning: status, log level, action.
    QColor gray;
    QColor orange;
    QColor green;
    QColor red;
    QColor blue;
    QColor purple;
};

// The colours of an appearance.
[[nodiscard]] Palette paletteFor(Appearance appearance);

// The same for the toolkit's own widgets. Secondary text is the role PlaceholderText there, so that a label
// gets it by its foreground role and follows a change of appearance.
[[nodiscard]] QPalette toolkitPalette(const Palette& colors);

// The colour with another opacity, 0 to 1.
[[nodiscard]] QColor withOpacity(QColor color, double opacity);

} // namespace fernwick
