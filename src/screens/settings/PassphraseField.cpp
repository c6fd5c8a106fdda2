#include "screens/settings/PassphraseField.h"

namespace fernwick {

PassphraseField::PassphraseField(const Theme& theme, QWidget* parent) : QLineEdit(parent) {
    setFont(theme.font(13));
    setEchoMode(QLineEdit::Password);
    setInputMethodHints(inputMethodHints() | Qt::ImhHiddenText | Qt::ImhSensitiveData |
                        Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
}

support::Secret PassphraseField::secret() const {
    QByteArray bytes = text().toUtf8();
    const auto size = static_cast<std::size_t>(bytes.size());
    support::Secret secret(std::string_view(bytes.constData(), size));
    support::wipe(bytes.data(), size);
    return secret;
}

void PassphraseField::wipe() {
    QString before = text();
    clear();
    before.fill(QChar(0)); // the buffer that was the field's own; it is ours alone now
}

} // namespace fernwick
