#include "screens/settings/VerbatimText.h"

#include <algorithm>
#include <array>

namespace fernwick {

namespace {

// What a document does not keep: the end of a string in places, a line end of its own, the two separators of
// Unicode, and the marks around a frame.
constexpr std::array<char16_t, 6> kLost{0x0000, 0x000D, 0x2028, 0x2029, 0xFDD0, 0xFDD1};
constexpr char16_t kFirstStandIn = 0xDC00; // second halves of characters, without a first one
constexpr char16_t kByteOrderMark = 0xFEFF;

// What nearly all text consists of, and needs no second look.
bool isPlain(char16_t code) {
    return code > 0x000D && code < 0x2028;
}

// Whether the character at a place is the second half of one whose first half stands before it.
bool completes(const QString& text, qsizetype place) {
    return place > 0 && text[place - 1].isHighSurrogate();
}

std::string withCrLf(const std::string& text) {
    std::string lines;
    lines.reserve(text.size() + text.size() / 32);
    for (const char each : text) {
        if (each == '\n') {
            lines += '\r';
        }
        lines += each;
    }
    return lines;
}

} // namespace

QString VerbatimText::encoded(QString text) {
    for (QChar& each : text) {
        if (isPlain(each.unicode())) {
            continue;
        }
        if (const auto* const found = std::ranges::find(kLost, each.unicode()); found != kLost.end()) {
            each = QChar(static_cast<char16_t>(kFirstStandIn + (found - kLost.begin())));
        }
    }
    return text;
}

VerbatimText VerbatimText::of(std::string_view utf8) {
    QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    if (utf8.starts_with("\xEF\xBB\xBF")) {
        text.prepend(QChar(kByteOrderMark)); // which decoding takes away
    }
    const auto pairs = text.count(QStringLiteral("\r\n"));
    const bool crLf = pairs > 0 && pairs == text.count(QLatin1Char('\n'));
    if (crLf) {
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    }
    return {encoded(std::move(text)), crLf};
}

std::string VerbatimText::bytes(QString rawText, bool endsLinesInCrLf) {
    for (qsizetype place = 0; place < rawText.size(); ++place) {
        const char16_t code = rawText.at(place).unicode();
        if (isPlain(code)) {
            continue;
        }
        if (std::ranges::find(kLost.begin() + 2, kLost.end(), code) != kLost.end()) {
            rawText[place] = QLatin1Char('\n');
        } else if (code >= kFirstStandIn && code < kFirstStandIn + kLost.size() && !completes(rawText, place)) {
            rawText[place] = QChar(kLost.at(static_cast<std::size_t>(code - kFirstStandIn)));
        }
    }
    auto text = rawText.toStdString();
    return endsLinesInCrLf ? withCrLf(text) : text;
}

} // namespace fernwick
