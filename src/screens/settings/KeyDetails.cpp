#include "screens/settings/KeyDetails.h"

#include "screens/routing/DetailSection.h"
#include "screens/settings/DetailRow.h"
#include "screens/theme/FlowLayout.h"
#include "screens/theme/Grid.h"
#include "screens/theme/IconLine.h"
#include "screens/theme/Parts.h"

#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>

#include <utility>

namespace fernwick {

namespace {

constexpr int kButtonIconSize = 14;

} // namespace

KeyDetails::KeyDetails(const SettingsContext& context, std::function<void()> editPassphrase, QWidget* parent)
    : QScrollArea(parent), context_(context), editPassphrase_(std::move(editPassphrase)) {
    setObjectName(QStringLiteral("keyDetails"));
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    viewport()->setAutoFillBackground(false);
    auto* column = new QWidget;
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kMedium);
    layout->addWidget(buildFacts(column));
    layout->addWidget(buildPassphrase(column));
    layout->addStretch();
    setWidget(column);
    column->setAutoFillBackground(false); // the area has just given it a ground
}

QWidget* KeyDetails::buildFacts(QWidget* parent) {
    auto* section = new DetailSection(context_.theme, QStringLiteral("Key Details"), parent);
    const auto add = [&](const QString& label, DetailRow::Kind kind) {
        auto* row = new DetailRow(context_.theme, label, kind, section);
        section->addRow(row);
        return row;
    };
    name_ = add(QStringLiteral("Name"), DetailRow::Kind::text);
    type_ = add(QStringLiteral("Type"), DetailRow::Kind::text);
    path_ = add(QStringLiteral("Path"), DetailRow::Kind::path);
    added_ = add(QStringLiteral("Added"), DetailRow::Kind::text);
    auto* row = new QWidget(section);
    auto* reveal =
        makeButton(QStringLiteral("Reveal in Finder"), ButtonRole::plain, QStringLiteral("revealButton"), row);
    reveal->setFont(context_.theme.font(12));
    reveal->setIcon(themedIcon(context_.theme, Icon::magnifier, &Palette::text));
    reveal->setIconSize(QSize(kButtonIconSize, kButtonIconSize));
    connect(reveal, &QPushButton::clicked, this, [this] {
        if (key_) {
            context_.desktop.reveal(key_->path);
        }
    });
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(reveal);
    layout->addStretch();
    section->addRow(row);
    return section;
}

QWidget* KeyDetails::buildPassphrase(QWidget* parent) {
    auto* section = new DetailSection(context_.theme, QString(), parent);
    passphrase_.state = new IconLine(context_.theme, context_.theme.font(13, QFont::Medium), section);
    passphrase_.state->setObjectName(QStringLiteral("passphraseState"));
    section->addRow(passphrase_.state);
    passphrase_.advice = makeCaption(QString(), context_.theme.font(12), section);
    passphrase_.advice->setObjectName(QStringLiteral("passphraseAdvice"));
    passphrase_.advice->setWordWrap(true);
    section->addRow(passphrase_.advice);
    auto* row = new QWidget(section);
    row->setLayout(new FlowLayout(row, grid::kSmall));
    passphrase_.set =
        addPassphraseButton(row, QStringLiteral("Set Passphrase"), "setPassphraseButton", editPassphrase_);
    passphrase_.change = addPassphraseButton(row, QStringLiteral("Change Passphrase"), "changePassphraseButton",
                                             editPassphrase_);
    passphrase_.remove = addPassphraseButton(row, QStringLiteral("Remove Passphrase"), "removePassphraseButton",
                                             [this] { removePassphrase(); });
    section->addRow(row);
    return section;
}

QPushButton* KeyDetails::addPassphraseButton(QWidget* row, const QString& text, const char* objectName,
                                             std::function<void()> clicked) {
    auto* button = makeButton(text, ButtonRole::plain, QString::fromLatin1(objectName), row);
    button->setFont(context_.theme.font(12));
    connect(button, &QPushButton::clicked, this, std::move(clicked));
    row->layout()->addWidget(button);
    return button;
}

void KeyDetails::showKey(const IdentityKey& key) {
    if (!key_ || key_->id != key.id) {
        verticalScrollBar()->setValue(0);
    }
    key_ = key;
    name_->setValue(key.name);
    type_->setValue(key.keyType());
    path_->setValue(key.path);
    added_->setValue(dates_.text(key.addedAt, context_.clock.now()));
    showPassphrase(context_.keychain.loadKeyPassphrase(key.id).has_value());
}

void KeyDetails::showPassphrase(bool isStored) {
    auto& parts = passphrase_;
    parts.state->showLine({isStored ? Icon::lock : Icon::lockOpen,
                           isStored ? &Palette::green : &Palette::secondary, &Palette::text},
                          isStored ? QStringLiteral("Passphrase saved") : QStringLiteral("No passphrase"));
    parts.advice->setText(
        isStored ? QStringLiteral("Passphrase stored securely in Keychain. SSH will use it automatically.")
                 : QStringLiteral("If your private key is encrypted with a passphrase, add it here."));
    // The keyboard goes to the button that takes the place of the one it was on.
    const bool hadFocus = parts.set->hasFocus() || parts.change->hasFocus() || parts.remove->hasFocus();
    auto* first = isStored ? parts.change : parts.set;
    first->show();
    if (hadFocus && (isStored ? parts.set->hasFocus() : !parts.set->hasFocus())) {
        first->setFocus(Qt::OtherFocusReason);
    }
    parts.set->setVisible(!isStored);
    parts.change->setVisible(isStored);
    parts.remove->setVisible(isStored);
}

void KeyDetails::removePassphrase() {
    const IdentityKey key = *key_; // the update below shows the key anew
    context_.keychain.deleteKeyPassphrase(key.id);
    context_.keys.update(key);
}

} // namespace fernwick
