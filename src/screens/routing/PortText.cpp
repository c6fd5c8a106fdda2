#include "screens/routing/PortText.h"

#include "support/Text.h"

#include <QTextBoundaryFinder>

namespace fernwick {

QString numbersOnly(const QString& text) {
    QString kept;
    QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
    for (auto from = characters.position(); characters.toNextBoundary() >= 0; from = characters.position()) {
        const QString character = text.mid(from, characters.position() - from);
        if (support::startsWithNumber(character.toStdString())) {
            kept += character;
        }
    }
    return kept;
}

} // namespace fernwick
