// A small rounded ground in the light of a colour, with a short text in it: what a record is, at a glance.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

#include <optional>

class QPainter;

namespace fernwick {

// What a capsule shows.
struct CapsuleLook {
    QString text;
    NamedColor color = &Palette::gray;
    double opacity = 0.12; // of the ground
    std::optional<Icon> icon = std::nullopt;
};

// How large a capsule is in that font.
[[nodiscard]] QSize capsuleSize(const QFontMetrics& metrics, const CapsuleLook& look);

// Draws it over the whole area, in the painter's font; the text is cut short where there is no room.
void paintCapsule(QPainter& painter, const QRect& area, const CapsuleLook& look, const Theme& theme);

// A capsule that stands by itself.
class Capsule final : public QWidget {
public:
    Capsule(const Theme& theme, QWidget* parent);

    void setLook(CapsuleLook look);
    [[nodiscard]] const QString& text() const { return look_.text; }
    [[nodiscard]] QSize sizeHint() const override { return capsuleSize(fontMetrics(), look_); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    CapsuleLook look_;
};

} // namespace fernwick
