#include "screens/settings/SyncForm.h"

#include "screens/settings/SettingRow.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"
#include "screens/theme/Switch.h"

#include <QHBoxLayout>
#include <QPushButton>

#include <utility>

namespace fernwick {

namespace {

constexpr qsizetype kLongestMessage = 600;

} // namespace

SyncForm::SyncForm(SyncParts parts, QWidget* parent)
    : QWidget(parent), parts_(std::move(parts)), rows_(new QVBoxLayout(this)) {
    rows_->setContentsMargins(0, 0, 0, 0);
    rows_->setSpacing(grid::kMedium);
}

void SyncForm::addRow(QWidget* row) {
    rows_->addWidget(row);
}

void SyncForm::addDivider() {
    addRow(new Divider(theme(), this));
}

void SyncForm::addGroup(const QWidgetList& lines) {
    auto* group = new QWidget(this);
    auto* layout = new QVBoxLayout(group);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight);
    for (auto* line : lines) {
        layout->addWidget(line);
    }
    addRow(group);
}

void SyncForm::addButtons(const QWidgetList& buttons) {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    for (auto* button : buttons) {
        layout->addWidget(button);
    }
    layout->addStretch();
    addRow(row);
}

Switch* SyncForm::newSwitch(const char* objectName, std::function<void(bool)> thrown) {
    auto* control = new Switch(theme(), this);
    control->setObjectName(QString::fromLatin1(objectName));
    connect(control, &QCheckBox::toggled, this, std::move(thrown));
    return control;
}

QWidget* SyncForm::newSwitchRow(const QString& label, Switch* control) {
    return new SettingRow(theme(), label, control, this);
}

QLabel* SyncForm::newText(const QString& text) {
    auto* label = makeCaption(text, theme().font(12), this);
    label->setWordWrap(true);
    return label;
}

QPushButton* SyncForm::newButton(const QString& text, const char* objectName, std::function<void()> clicked) {
    auto* button = makeButton(text, ButtonRole::plain, QString::fromLatin1(objectName), this);
    connect(button, &QPushButton::clicked, this, std::move(clicked));
    return button;
}

SyncCompletion SyncForm::told(std::function<void()> through, QString onSuccess, QString onFailure) const {
    return [through = std::move(through), onSuccess = std::move(onSuccess), onFailure = std::move(onFailure),
            alert = parts_.alert](bool succeeded, const std::string& message) {
        through();
        alert({succeeded ? onSuccess : onFailure, displayLine(message, kLongestMessage), succeeded});
    };
}

} // namespace fernwick
