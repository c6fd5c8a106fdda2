#include "screens/theme/Palette.h"

namespace fernwick {

namespace {

Palette lightPalette() {
    return {.window = QColor(0xF6, 0xF6, 0xF8),
            .sidebar = QColor(0xEC, 0xED, 0xF0),
            .surface = QColor(0xFF, 0xFF, 0xFF),
            .field = QColor(0xFF, 0xFF, 0xFF),
            .popup = QColor(0xFC, 0xFC, 0xFD),
            .text = QColor(0x1C, 0x1D, 0x21),
            .secondary = QColor(0x66, 0x68, 0x70),
            .placeholder = QColor(0x9A, 0x9C, 0xA4),
            .onAccent = QColor(0xFF, 0xFF, 0xFF),
            .accent = QColor(0x0B, 0x68, 0xE6),
            .control = QColor(0xFF, 0xFF, 0xFF),
            .hover = QColor(0, 0, 0, 13),
            .pressed = QColor(0, 0, 0, 26),
            .selection = QColor(0xD2, 0xE2, 0xFA),
            .separator = QColor(0, 0, 0, 24),
            .border = QColor(0, 0, 0, 42),
            .gray = QColor(0x80, 0x82, 0x8A),
            .orange = QColor(0xC8, 0x62, 0x00),
            .green = QColor(0x1C, 0x8A, 0x41),
            .red = QColor(0xD3, 0x2B, 0x2F),
            .blue = QColor(0x0B, 0x68, 0xE6),
            .purple = QColor(0x8A, 0x3F, 0xC8)};
}

Palette darkPalette() {
    return {.window = QColor(0x1D, 0x1E, 0x21),
            .sidebar = QColor(0x26, 0x27, 0x2B),
            .surface = QColor(0x17, 0x18, 0x1A),
            .field = QColor(0x15, 0x16, 0x18),
            .popup = QColor(0x2C, 0x2D, 0x31),
            .text = QColor(0xEC, 0xED, 0xF0),
            .secondary = QColor(0xA0, 0xA2, 0xAB),
            .placeholder = QColor(0x72, 0x74, 0x7C),
            .onAccent = QColor(0xFF, 0xFF, 0xFF),
            .accent = QColor(0x2F, 0x7C, 0xF2),
            .control = QColor(0x38, 0x3A, 0x40),
            .hover = QColor(255, 255, 255, 16),
            .pressed = QColor(255, 255, 255, 32),
            .selection = QColor(0x2A, 0x43, 0x68),
            .separator = QColor(255, 255, 255, 24),
            .border = QColor(255, 255, 255, 40),
            .gray = QColor(0x9A, 0x9C, 0xA5),
            .orange = QColor(0xFF, 0xA0, 0x45),
            .green = QColor(0x3C, 0xCB, 0x70),
            .red = QColor(0xF2, 0x5C, 0x57),
            .blue = QColor(0x4C, 0x9B, 0xFF),
            .purple = QColor(0xC0, 0x8C, 0xFF)};
}

} // namespace

Palette paletteFor(Appearance appearance) {
    return appearance == Appearance::dark ? darkPalette() : lightPalette();
}

QColor withOpacity(QColor color, double opacity) {
    color.setAlphaF(static_cast<float>(opacity));
    return color;
}

QPalette toolkitPalette(const Palette& colors) {
    QPalette palette;
    palette.setColor(QPalette::Window, colors.window);
    palette.setColor(QPalette::WindowText, colors.text);
    palette.setColor(QPalette::Base, colors.field);
    palette.setColor(QPalette::AlternateBase, colors.sidebar);
    palette.setColor(QPalette::Text, colors.text);
    palette.setColor(QPalette::Button, colors.control);
    palette.setColor(QPalette::ButtonText, colors.text);
    palette.setColor(QPalette::BrightText, colors.onAccent);
    palette.setColor(QPalette::ToolTipBase, colors.popup);
    palette.setColor(QPalette::ToolTipText, colors.text);
    palette.setColor(QPalette::PlaceholderText, colors.secondary);
    palette.setColor(QPalette::Highlight, colors.accent);
    palette.setColor(QPalette::HighlightedText, colors.onAccent);
    palette.setColor(QPalette::Link, colors.blue);
    palette.setColor(QPalette::LinkVisited, colors.blue);
    palette.setColor(QPalette::Light, colors.surface);
    palette.setColor(QPalette::Midlight, colors.control);
    palette.setColor(QPalette::Mid, colors.border);
    palette.setColor(QPalette::Dark, colors.secondary);
    palette.setColor(QPalette::Shadow, QColor(0, 0, 0));
    const QColor dimmed = withOpacity(colors.text, 0.35);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, dimmed);
    }
    return palette;
}

} // namespace fernwick
