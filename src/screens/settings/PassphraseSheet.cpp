#include "screens/settings/PassphraseSheet.h"

#include "screens/settings/PassphraseField.h"
#include "screens/theme/Announcement.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/IconLine.h"
#include "screens/theme/Parts.h"

#include <QGridLayout>
#include <QPushButton>
#include <QToolButton>

#include <utility>

namespace fernwick {

namespace {

constexpr int kMargin = 24;
constexpr int kMarkSize = 36;
constexpr int kBelowLine = 22; // the text of a line with an icon starts there

} // namespace

PassphraseSheet::PassphraseSheet(const Theme& theme, KeychainStore& keychain, KeyManager& keys, IdentityKey key,
                                 QWidget* parent)
    : QDialog(parent, Qt::Sheet), theme_(theme), keychain_(keychain), keys_(keys), key_(std::move(key)) {
    setObjectName(QStringLiteral("passphraseSheet"));
    setWindowTitle(QStringLiteral("Passphrase"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin - grid::kTight, kMargin, kMargin - grid::kTight);
    layout->setSpacing(grid::kMedium);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    auto* heading = buildHeading();
    heading->setFixedWidth(kWidth - 2 * kMargin);
    layout->addWidget(heading);
    layout->addSpacing(grid::kTight);
    if (keychain_.loadKeyPassphrase(key_.id)) {
        layout->addWidget(buildNote());
    }
    layout->addWidget(buildField());
    error_ = new IconLine(theme, theme.font(12), this);
    error_->setObjectName(QStringLiteral("passphraseError"));
    error_->hide();
    layout->addWidget(error_);
    layout->addSpacing(grid::kTight);
    layout->addWidget(buildButtons());
    passphrase_->setFocus();
}

QWidget* PassphraseSheet::buildHeading() {
    auto* heading = new QWidget(this);
    auto* name = new ElidedLabel(heading);
    name->setObjectName(QStringLiteral("passphraseKeyName"));
    name->setFont(theme_.font(12));
    name->setForegroundRole(QPalette::PlaceholderText);
    name->setText(displayLine(key_.name));
    auto* layout = new QGridLayout(heading);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setHorizontalSpacing(grid::kMedium);
    layout->setVerticalSpacing(2);
    layout->setColumnStretch(1, 1);
    layout->addWidget(new IconView(theme_, Icon::shieldLock, kMarkSize, &Palette::accent, heading), 0, 0, 2, 1,
                      Qt::AlignVCenter);
    layout->addWidget(makeLabel(windowTitle(), theme_.font(17, QFont::DemiBold), heading), 0, 1);
    layout->addWidget(name, 1, 1);
    return heading;
}

QWidget* PassphraseSheet::buildNote() {
    auto* note = new Card(theme_, this);
    note->setObjectName(QStringLiteral("passphraseNote"));
    auto* line = new IconLine(theme_, theme_.font(13, QFont::Medium), note);
    line->showLine({Icon::checkCircle, &Palette::green, &Palette::text},
                   QStringLiteral("Passphrase stored in Keychain"));
    auto* text =
        makeCaption(QStringLiteral("SSH will use it automatically when connecting."), theme_.font(12), note);
    text->setWordWrap(true);
    text->setIndent(kBelowLine);
    auto* layout = new QVBoxLayout(note);
    layout->setContentsMargins(grid::kMedium, grid::kSmall + 2, grid::kMedium, grid::kSmall + 2);
    layout->setSpacing(grid::kTight);
    layout->addWidget(line);
    layout->addWidget(text);
    return note;
}

QWidget* PassphraseSheet::buildField() {
    auto* row = new QWidget(this);
    passphrase_ = new PassphraseField(theme_, row);
    passphrase_->setObjectName(QStringLiteral("passphraseField"));
    passphrase_->setAccessibleName(windowTitle());
    passphrase_->setPlaceholderText(QStringLiteral("Enter private key passphrase"));
    eye_ = makeIconButton(theme_, Icon::eye, QStringLiteral("Show passphrase"),
                          QStringLiteral("showPassphraseButton"), row);
    connect(eye_, &QToolButton::clicked, this, [this] { togglePassphrase(); });
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(passphrase_, 1);
    layout->addWidget(eye_);
    return row;
}

QWidget* PassphraseSheet::buildButtons() {
    auto* buttons = new QWidget(this);
    auto* cancel = makeButton(QStringLiteral("Cancel"), ButtonRole::plain,
                              QStringLiteral("passphraseCancelButton"), buttons);
    cancel->setAutoDefault(true); // Return presses the button that has the keyboard
    auto* saving = makeButton(QStringLiteral("Save to Keychain"), ButtonRole::prominent,
                              QStringLiteral("passphraseSaveButton"), buttons);
    saving->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(saving, &QPushButton::clicked, this, [this] { save(); });
    auto* layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addStretch();
    layout->addWidget(cancel);
    layout->addWidget(saving);
    return buttons;
}

void PassphraseSheet::togglePassphrase() {
    showPassphrase_ = !showPassphrase_;
    passphrase_->setMasked(!showPassphrase_);
    const QString help =
        showPassphrase_ ? QStringLiteral("Hide passphrase") : QStringLiteral("Show passphrase");
    eye_->setIcon(themedIcon(theme_, showPassphrase_ ? Icon::eyeOff : Icon::eye, &Palette::secondary));
    eye_->setToolTip(help);
    eye_->setAccessibleName(help);
}

void PassphraseSheet::showError(const QString& message) {
    error_->showLine({Icon::exclamationCircle, &Palette::red, &Palette::red}, message);
    error_->show();
    announceAlert(*error_);
}

void PassphraseSheet::save() {
    const auto passphrase = passphrase_->secret();
    if (passphrase.empty()) {
        showError(QStringLiteral("Passphrase cannot be empty"));
        return;
    }
    keychain_.saveKeyPassphrase(passphrase, key_.id);
    keys_.update(key_); // whoever shows the key looks anew
    accept();
}

void PassphraseSheet::done(int result) {
    passphrase_->wipe();
    QDialog::done(result);
}

} // namespace fernwick
