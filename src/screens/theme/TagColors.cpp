#include "screens/theme/TagColors.h"

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

} // namespace fernwick
