// A scrolling page of form sections, in a column that does not grow wider than reads well.
// Threads: main thread only.
#pragma once

#include "screens/detail/FormSection.h"

#include <QScrollArea>

namespace fernwick {

class FormPage : public QScrollArea {
protected:
    // How roomy a page is, in logical pixels.
    struct Room {
        int above;   // the first section
        int between; // two sections, and below the last
    };

    FormPage(const Theme& theme, QWidget* parent, Room room = {.above = grid::kTight, .between = 30});

    // Adds a section at the end; `padding` lies above and below its rows.
    FormSection* addSection(const QString& title, Icon icon, int padding = grid::kLarge);

private:
    const Theme& theme_;
    QWidget* column_;
    QVBoxLayout* sections_;
};

} // namespace fernwick
