// One row of a form: a label, and the control that it names on the screen and aloud.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QLabel>
#include <QWidget>

namespace fernwick {

class LabeledField final : public QWidget {
public:
    // Takes the content over; it fills the row unless its width is fixed. `control` is what the label names: by
    // default the content itself. A caption, if there is one, stands under the label.
    LabeledField(const Theme& theme, const QString& label, QWidget* content, QWidget* parent,
                 QWidget* control = nullptr, const QString& caption = {});

    // The label itself.
    [[nodiscard]] QLabel& name() const { return *name_; }

private:
    QLabel* name_;
};

} // namespace fernwick
