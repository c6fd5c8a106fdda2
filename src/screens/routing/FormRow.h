// One row of a sheet: a label of a given width, and the control that it names on the screen and aloud.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QWidget>

namespace fernwick {

class FormRow final : public QWidget {
public:
    // What the label says, a colon and all; aloud the control goes by it without the colon.
    struct Label {
        QString text;
        int width; // in logical pixels; more where the text needs it
    };

    // Takes the control over.
    FormRow(const Theme& theme, const Label& label, QWidget* control, QWidget* parent);
};

} // namespace fernwick
