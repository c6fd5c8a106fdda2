#include "screens/detail/PasswordField.h"

#include <QScopedValueRollback>
#include <QShowEvent>

namespace fernwick {

PasswordField::PasswordField(const Theme& theme, KeychainStore& keychain, QWidget* parent)
    : QLineEdit(parent), keychain_(keychain) {
    setObjectName(QStringLiteral("passwordField"));
    setFont(theme.font(13));
    setEchoMode(QLineEdit::Password);
    setInputMethodHints(inputMethodHints() | Qt::ImhHiddenText | Qt::ImhSensitiveData |
                        Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    // Not textEdited, which is silent when assistive technology sets the text.
    connect(this, &QLineEdit::textChanged, this, [this] {
        if (!showing_) {
            store();
        }
    });
}

void PasswordField::setTunnel(const support::Uuid& tunnelID) {
    if (tunnelID == tunnelID_) {
        return;
    }
    tunnelID_ = tunnelID;
    if (isVisible()) {
        load();
    }
}

void PasswordField::showEvent(QShowEvent* event) {
    QLineEdit::showEvent(event);
    if (!event->spontaneous()) {
        load();
    }
}

void PasswordField::hideEvent(QHideEvent* event) {
    QLineEdit::hideEvent(event);
    if (!event->spontaneous()) {
        setSilently(QString());
    }
}

void PasswordField::load() {
    const auto secret = keychain_.loadTunnelPassword(tunnelID_);
    const std::string_view bytes = secret ? secret->text() : std::string_view();
    setSilently(QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

void PasswordField::store() {
    QByteArray bytes = text().toUtf8();
    keychain_.saveTunnelPassword(
        support::Secret(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size()))),
        tunnelID_);
    support::wipe(bytes.data(), static_cast<std::size_t>(bytes.size()));
}

void PasswordField::setSilently(const QString& text) {
    const QScopedValueRollback guard(showing_, true);
    QString before = this->text();
    setText(text);
    before.fill(QChar(0)); // the buffer that was the field's own; it is ours alone now
}

} // namespace fernwick
