// A button that cannot be pressed for as long as what it started is not through.
// Threads: main thread only.
#pragma once

#include <QAbstractButton>
#include <QPointer>

namespace fernwick {

// Copies hold the same button. It may go while it is held.
class HeldButton {
public:
    // Disables the button.
    explicit HeldButton(QAbstractButton& button) : button_(&button) {
        const bool hadFocus = button.hasFocus();
        button.setEnabled(false);
        keyboardWentTo_ = hadFocus ? button.window()->focusWidget() : nullptr;
        hadFocus_ = hadFocus;
    }

    // Lets go of it: enables it again. The keyboard comes back if nobody has taken it elsewhere since.
    void operator()() const {
        if (button_ == nullptr) {
            return;
        }
        button_->setEnabled(true);
        if (hadFocus_ && button_->window()->focusWidget() == keyboardWentTo_) {
            button_->setFocus(Qt::OtherFocusReason);
        }
    }

private:
    QPointer<QAbstractButton> button_;
    QPointer<QWidget> keyboardWentTo_; // when the button gave it away
    bool hadFocus_ = false;
};

} // namespace fernwick
