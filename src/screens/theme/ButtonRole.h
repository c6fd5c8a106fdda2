// What a push button is for, which decides how it is drawn.
#pragma once

#include <QAbstractButton>
#include <QVariant>

namespace fernwick {

enum class ButtonRole {
    plain,       // any other
    prominent,   // the one that the screen is about
    destructive, // takes something away for good
    borderless   // no ground until the pointer is on it
};

inline constexpr const char* kButtonRoleProperty = "fernwickButtonRole";

inline void setButtonRole(QAbstractButton& button, ButtonRole role) {
    button.setProperty(kButtonRoleProperty, static_cast<int>(role));
}

// The role that was set, or plain.
[[nodiscard]] inline ButtonRole buttonRole(const QObject* button) {
    return button != nullptr ? static_cast<ButtonRole>(button->property(kButtonRoleProperty).toInt())
                             : ButtonRole::plain;
}

} // namespace fernwick
