// The editor of several lines that is bound to a text kept elsewhere: it tells every change by the user, and
// shows what is stored without disturbing who is typing. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QPlainTextEdit>

#include <functional>
#include <string>

namespace fernwick {

class NotesEditor final : public QPlainTextEdit {
public:
    static constexpr int kHeight = 70;

    // `edited` is called with the whole text (UTF-8, lines ending in "\n") after each change by the user.
    NotesEditor(const Theme& theme, std::function<void(std::string)> edited, QWidget* parent);

    // Shows the stored text without calling back. Where that is what it holds already, cursor, selection and
    // undo stay, unless the text is another thing's (`anew`).
    void showStored(const std::string& stored, bool anew);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    std::function<void(std::string)> edited_;
    std::string last_; // what was shown or told last
    bool showing_ = false;
};

} // namespace fernwick
