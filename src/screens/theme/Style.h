// Draws the toolkit's controls in the application's own look, on top of the toolkit's plainest style.
// Threads: main thread only. The theme outlives the style's use: it puts another style in place before it goes.
#pragma once

#include <QProxyStyle>

namespace fernwick {

class Theme;

class Style final : public QProxyStyle {
public:
    explicit Style(const Theme& theme);

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    [[nodiscard]] QRect subElementRect(SubElement element, const QStyleOption* option,
                                       const QWidget* widget) const override;
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl subControl, const QWidget* widget) const override;
    [[nodiscard]] QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                         const QWidget* widget) const override;
    [[nodiscard]] QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                                     const QWidget* widget) const override;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override;
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* returned) const override;
    using QProxyStyle::polish;
    void polish(QWidget* widget) override;

private:
    [[nodiscard]] bool drawBareMenuPart(ControlElement element, const QStyleOption& option,
                                        QPainter& painter) const;

    const Theme& theme_;
};

} // namespace fernwick
