// A part of a form: a title with an icon, and a card with what belongs under it.
// Threads: main thread only.
#pragma once

#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

class QHBoxLayout;
class QVBoxLayout;

namespace fernwick {

class FormSection final : public QWidget {
public:
    // `padding` lies above and below the rows.
    FormSection(const Theme& theme, const QString& title, Icon icon, QWidget* parent,
                int padding = grid::kLarge);

    // Adds a row at the end; the section becomes its parent.
    void addRow(QWidget* row);

    // Puts a control at the far end of the title; the section becomes its parent.
    void addToTitle(QWidget* control);

    // The widget that rows belong to.
    [[nodiscard]] QWidget* card() const { return card_; }

private:
    Card* card_;
    QHBoxLayout* title_;
    QVBoxLayout* rows_;
};

} // namespace fernwick
