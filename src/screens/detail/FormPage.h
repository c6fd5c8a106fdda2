// A scrolling page of form sections, in a column that does not grow wider than reads well.
// Threads: main thread only.
#pragma once

#include "screens/detail/FormSection.h"

#include <QScrollArea>

namespace fernwick {

class FormPage : public QScrollArea {
protected:
    FormPage(const Theme& theme, QWidget* parent);

    // Adds a section at the end.
    FormSection* addSection(const QString& title, Icon icon);

private:
    const Theme& theme_;
    QWidget* column_;
    QVBoxLayout* sections_;
};

} // namespace fernwick
