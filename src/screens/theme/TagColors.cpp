#include "screens/theme/TagColors.h"

#include <QRgba64>
#include <QString>

#include <charconv>
#include <string>

namespace fernwick {

QColor tagColor(std::string_view colorHex, const Palette& colors) {
    QString trimmed = QString::fromUtf8(colorHex.data(), static_cast<qsizetype>(colorHex.size())).trimmed();
    const std::string digits = trimmed.remove(QLatin1Char('#')).toStdString();
    const char* const end = digits.data() + digits.size();
    std::uint64_t number = 0;
    const bool signedText = digits.starts_with('-');
    const auto [stop, failure] = std::from_chars(digits.data(), end, number, 16);
    if (failure != std::errc() || stop != end || signedText) {
        return colors.blue;
    }
    return QColor(static_cast<int>((number >> 16U) & 0xFFU), static_cast<int>((number >> 8U) & 0xFFU),
                  static_cast<int>(number & 0xFFU));
}

std::string tagColorHex(const QColor& color) {
    const QColor rgb = color.toRgb();
    if (!rgb.isValid()) {
        return "#0A84FF";
    }
    constexpr unsigned kWhole = 0xFFFFU; // what the toolkit keeps a component of 1 as
    const QRgba64 parts =
        rgb.rgba64(); // whole numbers, since a float may lie just below the one that was meant
    const auto cut = [](quint16 component) { return component * 255U / kWhole; };
    return QString::asprintf("#%02X%02X%02X", cut(parts.red()), cut(parts.green()), cut(parts.blue()))
        .toStdString();
}

} // namespace fernwick
