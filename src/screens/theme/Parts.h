// The small parts that screens are put together from.
// Threads: main thread only. Each part refers to the theme, which outlives every widget.
#pragma once

#include "screens/theme/ButtonRole.h"
#include "screens/theme/Theme.h"

#include <QIcon>
#include <QLabel>
#include <QWidget>

class QPushButton;
class QToolButton;

namespace fernwick {

// A colour by its name in the palette, looked up anew at each painting.
using NamedColor = QColor Palette::*;

// An icon that is tinted when it is drawn, so that it follows a change of appearance.
[[nodiscard]] QIcon themedIcon(const Theme& theme, Icon icon, NamedColor color);

// An icon that stands by itself.
class IconView final : public QWidget {
public:
    IconView(const Theme& theme, Icon icon, int size, NamedColor color, QWidget* parent);

    void setIcon(Icon icon);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    Icon icon_;
    int size_;
    NamedColor color_;
};

// One line of plain text that ends in an ellipsis where there is no room for it. It runs in the text's own
// direction, unless the label was given one.
class ElidedLabel final : public QLabel {
public:
    explicit ElidedLabel(QWidget* parent) : QLabel(parent) { setTextFormat(Qt::PlainText); }

    // Which part of the text gives way, the end at first. The end of a path says more than its middle.
    void setElideMode(Qt::TextElideMode mode) { elide_ = mode; }

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Qt::TextElideMode elide_ = Qt::ElideRight;
};

// A rounded card in the surface colour.
class Card final : public QWidget {
public:
    Card(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(theme) {}

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
};

// A hairline across its parent.
class Divider final : public QWidget {
public:
    Divider(const Theme& theme, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
};

// Plain text in a size of the theme.
[[nodiscard]] QLabel* makeLabel(const QString& text, const QFont& font, QWidget* parent);

// The same in the secondary colour.
[[nodiscard]] QLabel* makeCaption(const QString& text, const QFont& font, QWidget* parent);

// A square button with an icon and a help text, which is also what it is called aloud.
[[nodiscard]] QToolButton* makeIconButton(const Theme& theme, Icon icon, const QString& helpText,
                                          const QString& objectName, QWidget* parent);

// Gives a widget a help text that came from elsewhere; empty text takes it away. It is shown and read aloud as
// it stands: a tool tip would otherwise guess whether it is rich text.
void setTextToolTip(QWidget& widget, const QString& text);

// A push button in a role.
[[nodiscard]] QPushButton* makeButton(const QString& text, ButtonRole role, const QString& objectName,
                                      QWidget* parent);

} // namespace fernwick
