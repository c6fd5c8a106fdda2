// A button that shows the chosen one of a few choices and opens a menu of them.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

#include <QComboBox>

#include <functional>

namespace fernwick {

class ChoiceMenu final : public QComboBox {
public:
    // `chosen` is called with the number of the choice, from 0, that the user made.
    ChoiceMenu(const Theme& theme, std::function<void(int)> chosen, QWidget* parent);

    // Adds a choice at the end.
    void addChoice(Icon icon, const QString& text);

    // The same without an icon.
    void addChoice(const QString& text);

    // Shows a choice without calling back.
    void showChoice(int choice);

    // Takes every choice away without calling back; what is shown is to be said anew.
    void clearChoices();

protected:
    // A page that is being scrolled must not change what happens to pass under the pointer.
    void wheelEvent(QWheelEvent* event) override;

private:
    const Theme& theme_;
    std::function<void(int)> chosen_;
    bool showing_ = false;
};

} // namespace fernwick
