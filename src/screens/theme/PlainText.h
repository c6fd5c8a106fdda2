// The text of a document as it was typed. Threads: main thread only.
#pragma once

#include <string>

class QTextDocument;

namespace fernwick {

// The whole text in UTF-8, lines ending in "\n". Unlike the toolkit's own it leaves blanks that must not break
// as they are.
[[nodiscard]] std::string plainText(const QTextDocument& document);

} // namespace fernwick
