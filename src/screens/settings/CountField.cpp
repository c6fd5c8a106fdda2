#include "screens/settings/CountField.h"

#include "support/Integer.h"

#include <QHideEvent>
#include <QRegularExpressionValidator>
#include <QSignalBlocker>

#include <utility>

namespace fernwick {

CountField::CountField(const Theme& theme, std::function<void(std::int64_t)> chosen, QWidget* parent)
    : QLineEdit(parent), chosen_(std::move(chosen)) {
    setFont(theme.font(13));
    setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), this));
    connect(this, &QLineEdit::editingFinished, this, [this] { commit(); });
    connect(this, &QLineEdit::textChanged, this, [this] {
        // Assistive technology sets it, and nothing tells when that is through; it may empty the field first.
        if (!hasFocus() && !text().isEmpty()) {
            commit();
        }
    });
}

void CountField::showNumber(std::int64_t number) {
    if (std::exchange(number_, number) == number && !text().isEmpty()) {
        return;
    }
    const QSignalBlocker quiet(this);
    setText(QString::number(number));
}

void CountField::hideEvent(QHideEvent* event) {
    QLineEdit::hideEvent(event);
    commit();
}

void CountField::commit() {
    const auto typed = support::parseInteger<std::int64_t>(text().toStdString());
    if (typed && *typed >= 1 && *typed != number_) {
        number_ = *typed;
        chosen_(*typed);
    }
    const QSignalBlocker quiet(this);
    if (const QString shown = QString::number(number_); shown != text()) {
        setText(shown);
    }
}

} // namespace fernwick
