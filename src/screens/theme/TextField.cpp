#include "screens/theme/TextField.h"

#include <QScopedValueRollback>

namespace fernwick {

namespace {

// Far beyond what anyone types, and short enough for the toolkit to lay out at every key.
constexpr int kMostCharacters = 100000;

} // namespace

TextField::TextField(const Theme& theme, std::function<void(std::string)> edited, QWidget* parent)
    : QLineEdit(parent), edited_(std::move(edited)) {
    setFont(theme.font(13));
    setMaxLength(kMostCharacters);
    // Not textEdited, which is silent when assistive technology sets the text.
    connect(this, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (!showing_) {
            last_ = text.toStdString();
            edited_(last_);
        }
    });
}

void TextField::showStored(const std::string& stored, bool anew) {
    if (stored == last_ && !anew) {
        return;
    }
    const QScopedValueRollback guard(showing_, true);
    // A long text shows its start; who is in the middle of one stays there.
    const int cursor = hasFocus() && !anew ? cursorPosition() : 0;
    last_ = stored;
    setText(QString::fromStdString(stored));
    setCursorPosition(cursor);
}

} // namespace fernwick
