// How the application looks: the appearance in force, its colours, fonts and icons, and the style that draws
// the toolkit's controls. Made once, after the application object and before any widget. Threads: main thread
// only.
#pragma once

#include "screens/theme/Icons.h"
#include "screens/theme/Palette.h"
#include "support/Signal.h"

#include <QFont>

#include <memory>
#include <optional>

class QApplication;

namespace fernwick {

class DesktopAppearance;

class Theme {
public:
    // The appearance that the environment variable FERNWICK_APPEARANCE asks for ("light" or "dark"), if any.
    [[nodiscard]] static std::optional<Appearance> forcedAppearance();

    // Dresses the application. Without a forced appearance it starts with what the toolkit's palette suggests
    // and then follows the desktop's setting, which it asks for once the event loop runs.
    explicit Theme(QApplication& application, std::optional<Appearance> forced = forcedAppearance());
    Theme(const Theme&) = delete;
    Theme& operator=(const Theme&) = delete;
    ~Theme();

    [[nodiscard]] Appearance appearance() const { return appearance_; }
    [[nodiscard]] const Palette& colors() const { return colors_; }
    [[nodiscard]] const Icons& icons() const { return icons_; }

    // The system's font in a size in points of a screen of 72 to the inch, larger where the desktop's text is.
    [[nodiscard]] QFont font(double points, QFont::Weight weight = QFont::Normal) const;

    // The same of the system's monospaced font.
    [[nodiscard]] QFont monospaced(double points) const;

    // Changes the appearance and repaints everything.
    void setAppearance(Appearance appearance);

    // Emitted after the appearance changed.
    support::Signal<> changed;

private:
    void apply();
    [[nodiscard]] int pixels(double points) const;

    Appearance appearance_;
    Palette colors_;
    Icons icons_;
    QFont systemFont_;
    double textScale_ = 1.0;
    std::unique_ptr<DesktopAppearance> desktop_;
};

} // namespace fernwick
