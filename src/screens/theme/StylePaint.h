// The drawing of the toolkit's controls, each as one function of its state; the style decides when.
// Threads: main thread only.
#pragma once

#include "screens/theme/ButtonRole.h"

#include <QRectF>
#include <QStyle>

class QPainter;
class QStyleOption;
class QStyleOptionButton;
class QStyleOptionComboBox;
class QStyleOptionMenuItem;
class QStyleOptionSlider;
class QStyleOptionSpinBox;

namespace fernwick {

class Theme;
struct Palette;

namespace stylepaint {

// A rounded shape with a hairline border, lined up with the screen's pixels.
void roundedBox(QPainter& painter, const QRectF& area, const QColor& fill, const QColor& border, double radius);

// The line inside the edge of the control that has the keyboard's focus.
void focusRing(QPainter& painter, const QRectF& area, const QColor& color, double radius);

void buttonGround(QPainter& painter, const QStyleOption& option, ButtonRole role, const Palette& colors);
void buttonLabel(QPainter& painter, const QStyleOptionButton& option, ButtonRole role, const Palette& colors);
void toolButtonGround(QPainter& painter, const QStyleOption& option, const Palette& colors);
void textField(QPainter& painter, const QStyleOption& option, const Palette& colors);
void checkBox(QPainter& painter, const QStyleOption& option, const Theme& theme);
void radioButton(QPainter& painter, const QStyleOption& option, const Palette& colors);
void comboBox(QPainter& painter, const QStyleOptionComboBox& option, const Theme& theme);
void comboBoxLabel(QPainter& painter, const QStyleOptionComboBox& option, const Palette& colors);
void slider(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle, const Palette& colors);
void spinBox(QPainter& painter, const QStyleOptionSpinBox& option, const QRect& up, const QRect& down,
             const Theme& theme);
void menuPanel(QPainter& painter, const QStyleOption& option, const Palette& colors);
void menuItem(QPainter& painter, const QStyleOptionMenuItem& option, const Theme& theme);
void menuBarItem(QPainter& painter, const QStyleOptionMenuItem& option, const Palette& colors);
void scrollBar(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle,
               const Palette& colors);

} // namespace stylepaint
} // namespace fernwick
