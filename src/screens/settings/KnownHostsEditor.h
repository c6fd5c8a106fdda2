// An editor of a plain text file in a monospaced font, one line on the screen for each in the file. The tab key
// moves on to the next control. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QPlainTextEdit>

#include <string>
#include <string_view>

namespace fernwick {

class KnownHostsEditor final : public QPlainTextEdit {
public:
    KnownHostsEditor(const Theme& theme, QWidget* parent);

    // Shows a text in valid UTF-8; no undo leads back before it.
    void setText(std::string_view utf8);

    // What is in the editor. Where nobody edited it, the bytes that were set.
    [[nodiscard]] std::string text() const;

protected:
    void insertFromMimeData(const QMimeData* source) override;

private:
    bool endsLinesInCrLf_ = false;
};

} // namespace fernwick
