#include "screens/settings/IdentitySettingsView.h"

#include "screens/routing/EditorFrame.h"
#include "screens/routing/ProxyRuleEmptyState.h"
#include "screens/settings/KeyDetails.h"
#include "screens/settings/KeyEncryption.h"
#include "screens/settings/KeyTable.h"
#include "screens/settings/PassphraseSheet.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QPushButton>
#include <QScopedValueRollback>
#include <QShowEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr int kButtonIconSize = 14;
constexpr int kDetailsWidth = 276; // at the least

QPushButton* makeFooterButton(const Theme& theme, const QString& text, Icon icon, const char* objectName,
                              QWidget* parent) {
    auto* button = makeButton(text, ButtonRole::plain, QString::fromLatin1(objectName), parent);
    button->setIcon(themedIcon(theme, icon, &Palette::text));
    button->setIconSize(QSize(kButtonIconSize, kButtonIconSize));
    return button;
}

} // namespace

IdentitySettingsView::IdentitySettingsView(const SettingsContext& context, QWidget* parent)
    : QWidget(parent), context_(context), self_(*this) {
    setObjectName(QStringLiteral("identityTab"));
    auto* intro =
        makeCaption(QStringLiteral("Import private keys or certificates to use for SSH authentication."),
                    context.theme.font(13), this);
    intro->setWordWrap(true);
    auto* columns = new QHBoxLayout;
    columns->setSpacing(grid::kLarge);
    columns->addWidget(buildList(), 6);
    columns->addWidget(buildDetails(), 5);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(grid::kLarge, grid::kMedium, grid::kLarge, grid::kLarge);
    layout->setSpacing(grid::kMedium);
    layout->addWidget(intro);
    layout->addLayout(columns, 1);
    keysChanged_ = context.keys.changed.connect([this] { refresh(); });
}

QWidget* IdentitySettingsView::buildList() {
    auto* column = new QWidget(this);
    table_ = new KeyTable(
        context_.theme, *new KeyTableModel(context_.files, this),
        {[this](std::optional<support::Uuid> id) { select(id); }, [this] { removeSelected(); }}, column);
    auto* add =
        makeFooterButton(context_.theme, QStringLiteral("Import"), Icon::plus, "importKeyButton", column);
    remove_ =
        makeFooterButton(context_.theme, QStringLiteral("Remove"), Icon::minus, "removeKeyButton", column);
    connect(add, &QPushButton::clicked, this, [this] { askForFiles(); });
    connect(remove_, &QPushButton::clicked, this, [this] { removeSelected(); });
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(grid::kSmall);
    buttons->addWidget(add);
    buttons->addWidget(remove_);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall + 2);
    layout->addWidget(new EditorFrame(context_.theme, table_, column), 1);
    layout->addLayout(buttons);
    return column;
}

QWidget* IdentitySettingsView::buildDetails() {
    right_ = new QStackedWidget(this);
    right_->setMinimumWidth(kDetailsWidth);
    empty_ = new ProxyRuleEmptyState(context_.theme, right_);
    empty_->show(Icon::keyOff, QStringLiteral("No key selected"), QString());
    details_ = new KeyDetails(context_, [this] { showPassphraseSheet(); }, right_);
    right_->addWidget(empty_);
    right_->addWidget(details_);
    return right_;
}

// What happened to the keys, their files and the keychain while the tab was not on the screen shows now.
void IdentitySettingsView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous()) {
        refresh();
    }
}

const IdentityKey* IdentitySettingsView::selectedKey() const {
    const auto& keys = context_.keys.keys();
    const auto found = selectedKeyID_ ? std::ranges::find(keys, *selectedKeyID_, &IdentityKey::id) : keys.end();
    return found != keys.end() ? &*found : nullptr;
}

void IdentitySettingsView::select(std::optional<support::Uuid> id) {
    selectedKeyID_ = id;
    showDetails();
}

void IdentitySettingsView::refresh() {
    if (isVisible() && !importing_) {
        table_->showKeys(context_.keys.keys(), selectedKeyID_);
        showDetails();
    }
}

void IdentitySettingsView::showDetails() {
    const bool removable = selectedKeyID_.has_value();
    if (!removable && remove_->hasFocus()) {
        table_->setFocus(); // a button that cannot be pressed any more gives the keyboard away
    }
    remove_->setEnabled(removable);
    if (const auto* key = selectedKey()) {
        details_->showKey(*key);
        right_->setCurrentWidget(details_);
    } else {
        right_->setCurrentWidget(empty_);
    }
}

void IdentitySettingsView::askForFiles() {
    if (std::exchange(asking_, true)) {
        return;
    }
    platform::OpenFileRequest request;
    request.title = "Select SSH Private Key";
    request.message = "Select private key file (id_rsa, id_ed25519, .pem, etc.)";
    request.folder = context_.host.homeFolder() + "/.ssh";
    context_.dialogs.openFiles(request, [weak = self_.weak()](const std::vector<std::string>& paths) {
        if (auto* self = weak.get()) {
            self->asking_ = false;
            self->importFiles(paths);
        }
    });
}

// A file that reads as encrypted is selected under the id that was made for it, also where its path was known
// already: then nothing in the list has that id, and there is no key to ask a passphrase for.
void IdentitySettingsView::importFiles(const std::vector<std::string>& paths) {
    bool wantsPassphrase = false;
    {
        const QScopedValueRollback guard(importing_, true);
        for (const auto& path : paths) {
            const auto id = support::Uuid::random();
            context_.keys.add({id, path.substr(path.rfind('/') + 1), path, "", context_.clock.now()});
            if (readsAsEncrypted(context_.files, path)) {
                selectedKeyID_ = id;
                wantsPassphrase = true;
            }
        }
    }
    refresh();
    if (wantsPassphrase) {
        showPassphraseSheet();
    }
}

void IdentitySettingsView::removeSelected() {
    if (!selectedKeyID_) {
        return;
    }
    const auto id = *std::exchange(selectedKeyID_, std::nullopt);
    context_.keychain.deleteKeyPassphrase(id);
    context_.keys.remove(id);
}

void IdentitySettingsView::showPassphraseSheet() {
    if (const auto* key = selectedKey()) {
        auto* sheet = new PassphraseSheet(context_.theme, context_.keychain, context_.keys, *key, this);
        sheet->open();
    }
}

} // namespace fernwick
