// Text of any length from elsewhere, to be read in a limited place: it wraps, scrolls, and can be marked and
// copied. Only the part that was scrolled to is laid out, so that megabytes cost what a page does. Threads:
// main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QPlainTextEdit>

namespace fernwick {

class LongTextView final : public QPlainTextEdit {
public:
    LongTextView(const Theme& theme, QWidget* parent);

    // Shows the text from its begin. It is shown as it is; `displayText` makes it fit for that.
    void showText(const QString& text);

    // Whether a text is too long for a label, or has a word that would make one too wide.
    [[nodiscard]] static bool isNeededFor(const QString& text);

private:
    // Lays out more of the text if its end is nearly on the screen.
    void follow();
    void loadMore();

    QString text_;
    qsizetype loaded_ = 0; // characters of the text that are in the document
};

} // namespace fernwick
