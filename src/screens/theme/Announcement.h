// Telling those who do not see the screen. Threads: main thread only.
#pragma once

#include <QAccessible>
#include <QWidget>

namespace fernwick {

// Tells assistive technology that the widget, which has just been shown, demands attention. Without any of it
// nothing happens.
inline void announceAlert(QWidget& widget) {
    QAccessibleEvent alert(&widget, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

} // namespace fernwick
