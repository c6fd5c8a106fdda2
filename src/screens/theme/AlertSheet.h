// A few words over a window, and one button or a few. It blocks the window that it belongs to and nothing else;
// it is opened, never executed. Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

#include <QDialog>

class QGridLayout;
class QHBoxLayout;

namespace fernwick {

class LongTextView;

class AlertSheet : public QDialog {
public:
    // The mark beside the words.
    struct Mark {
        Icon icon;
        NamedColor color;
    };

    // The widgets are named after `name`: the title is name + "Title" and the message name + "Text".
    AlertSheet(const Theme& theme, const QString& name, const Mark& mark, const QString& title,
               QWidget* parent);

    // What stands under the title. It is plain text and wraps anywhere where it must; where it would be too
    // high it is scrolled, in a widget named name + "LongText".
    void setMessage(const QString& message);

    // Puts a widget under the message; the sheet becomes its parent.
    void addAccessory(QWidget* accessory);

    // Adds a button at the end. Pressing it closes the sheet with that result; Return presses the one that has
    // the keyboard.
    QPushButton* addButton(const QString& text, ButtonRole role, const QString& objectName, DialogCode result);

private:
    const Theme& theme_;
    QGridLayout* layout_;
    QLabel* message_;
    LongTextView* longMessage_ = nullptr; // made with the first message that needs it
    QHBoxLayout* buttons_;
};

} // namespace fernwick
