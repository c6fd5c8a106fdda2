// The colour that a tag's text stands for.
#pragma once

#include "screens/theme/Palette.h"

#include <string>
#include <string_view>

namespace fernwick {

// Reads the text as a hexadecimal number, white space around it and every "#" in it left out; its low three
// bytes are red, green and blue. Text that is no such number, or one beyond 64 bits, gives blue.
[[nodiscard]] QColor tagColor(std::string_view colorHex, const Palette& colors);

// The text that stands for a colour: "#" and two capital hexadecimal digits each for red, green and blue, whose
// fractions are cut off. A colour that is none gives "#0A84FF".
[[nodiscard]] std::string tagColorHex(const QColor& color);

} // namespace fernwick
