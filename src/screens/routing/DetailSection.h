// The parts of a read-only panel: a titled card, and the rows in it.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

class QVBoxLayout;

namespace fernwick {

// A title and a card with what belongs under it. Without a title there is only the card; without rows, only the
// title.
class DetailSection final : public QWidget {
public:
    DetailSection(const Theme& theme, const QString& title, QWidget* parent);

    // Adds a row at the end; the section becomes its parent.
    void addRow(QWidget* row);

private:
    Card* card_;
    QVBoxLayout* rows_;
};

// A key and its value, side by side. A value that is too long ends in an ellipsis and is whole in its help
// text.
class DetailKV final : public QWidget {
public:
    DetailKV(const Theme& theme, const QString& key, const QString& value, QWidget* parent);

    [[nodiscard]] QString value() const { return value_->text(); }

private:
    QLabel* value_;
};

// An icon and a text beside it, in a colour.
class DetailLine final : public QWidget {
public:
    DetailLine(const Theme& theme, Icon icon, NamedColor color, const QString& text, QWidget* parent);

    // Adds a second text in the secondary colour.
    void addCaption(const QString& text);

protected:
    void changeEvent(QEvent* event) override;

private:
    void tint();

    const Theme& theme_;
    NamedColor color_;
    QLabel* text_;
};

} // namespace fernwick
