#include "screens/theme/Theme.h"

#include "screens/theme/DesktopAppearance.h"
#include "screens/theme/ScrollAreaAccess.h"
#include "screens/theme/Style.h"
#include "screens/theme/WindowAccess.h"

#include <QApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace fernwick {

namespace {

// The size of body text in pixels on a desktop whose text is neither enlarged nor reduced.
constexpr double kBodyPixels = 13.0;
constexpr double kLargestTextScale = 1.5;

Appearance appearanceOf(const QPalette& palette) {
    const bool dark =
        palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
    return dark ? Appearance::dark : Appearance::light;
}

// Not by QFontInfo, which would load the font in a size that nothing is drawn in.
int pixelSizeOf(const QFont& font) {
    constexpr double kPointsToTheInch = 72.0;
    const auto* screen = QGuiApplication::primaryScreen();
    if (font.pixelSize() > 0 || screen == nullptr) {
        return font.pixelSize();
    }
    return static_cast<int>(font.pointSizeF() * std::round(screen->logicalDotsPerInchY()) / kPointsToTheInch);
}

} // namespace

std::optional<Appearance> Theme::forcedAppearance() {
    const QString wanted = qEnvironmentVariable("FERNWICK_APPEARANCE");
    if (wanted == QStringLiteral("dark")) {
        return Appearance::dark;
    }
    if (wanted == QStringLiteral("light")) {
        return Appearance::light;
    }
    return std::nullopt;
}

Theme::Theme(QApplication& /*application*/, std::optional<Appearance> forced)
    : appearance_(forced.value_or(appearanceOf(QApplication::palette()))),
      colors_(paletteFor(appearance_)),
      systemFont_(QApplication::font()) {
    textScale_ = std::clamp(pixelSizeOf(systemFont_) / kBodyPixels, 1.0, kLargestTextScale);
    systemFont_.setPixelSize(pixels(kBodyPixels));
    QApplication::setFont(systemFont_);
    // The application owns its style.
    QApplication::setStyle(std::make_unique<Style>(*this).release());
    apply();
    installScrollAreaAccess();
    installWindowAccess();
    if (!forced) {
        desktop_ = std::make_unique<DesktopAppearance>([this](Appearance wanted) { setAppearance(wanted); });
    }
}

Theme::~Theme() {
    // The style refers to this object, and the application lives longer.
    QApplication::setStyle(QStringLiteral("Fusion"));
}

QFont Theme::font(double points, QFont::Weight weight) const {
    QFont font = systemFont_;
    font.setPixelSize(pixels(points));
    font.setWeight(weight);
    return font;
}

QFont Theme::monospaced(double points) const {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(pixels(points));
    return font;
}

void Theme::setAppearance(Appearance appearance) {
    if (appearance == appearance_) {
        return;
    }
    appearance_ = appearance;
    colors_ = paletteFor(appearance);
    apply();
    changed.emit();
}

void Theme::apply() {
    QPalette palette = toolkitPalette(colors_);
    QApplication::setPalette(palette);
    // In a field that role is what it is called after.
    palette.setColor(QPalette::PlaceholderText, colors_.placeholder);
    QApplication::setPalette(palette, "QLineEdit");
}

int Theme::pixels(double points) const {
    return static_cast<int>(std::lround(points * textScale_));
}

} // namespace fernwick
