// The text of a file for an editor that knows lines alone, and back, byte for byte. The toolkit's documents
// take several characters for line ends and drop others; these travel through the document as half characters,
// which no valid text contains. A file in which every line ends in CR LF keeps that. Threads: any.
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace fernwick {

struct VerbatimText {
    QString text; // lines end in "\n"
    bool endsLinesInCrLf = false;

    // The text of valid UTF-8.
    [[nodiscard]] static VerbatimText of(std::string_view utf8);

    // A piece of text from elsewhere, for putting into a document.
    [[nodiscard]] static QString encoded(QString text);

    // The bytes of a document's raw text (QTextDocument::toRawText), with the line ends of a file. Line breaks
    // within a paragraph, which the keyboard can make, count as line ends.
    [[nodiscard]] static std::string bytes(QString rawText, bool endsLinesInCrLf);
};

} // namespace fernwick
