#include "screens/theme/PlainText.h"

#include <QString>
#include <QTextDocument>

#include <algorithm>

namespace fernwick {

namespace {

bool endsLine(QChar character) {
    const char16_t code = character.unicode();
    // Paragraphs, lines within one, and the toolkit's own marks around a frame.
    return code == 0x2029 || code == 0x2028 || code == 0xFDD0 || code == 0xFDD1;
}

} // namespace

std::string plainText(const QTextDocument& document) {
    QString raw = document.toRawText();
    std::ranges::replace_if(raw, endsLine, QChar(u'\n'));
    return raw.toStdString();
}

} // namespace fernwick
