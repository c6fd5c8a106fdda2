// A part of a form: a title with an icon, and a card with what belongs under it.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

class QVBoxLayout;

namespace fernwick {

class FormSection final : public QWidget {
public:
    FormSection(const Theme& theme, const QString& title, Icon icon, QWidget* parent);

    // Adds a row at the end; the section becomes its parent.
    void addRow(QWidget* row);

    // The widget that rows belong to.
    [[nodiscard]] QWidget* card() const { return card_; }

private:
    Card* card_;
    QVBoxLayout* rows_;
};

} // namespace fernwick
