#include "screens/detail/InlineKeyPickerView.h"

#include "screens/theme/ChoiceMenu.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr int kMarkSize = 16;
constexpr int kPlusSize = 14;
constexpr int kHintIconSize = 14;
constexpr int kNarrowestMenu = 160;

QWidget* makeHint(const Theme& theme, QWidget* parent) {
    auto* hint = new QWidget(parent);
    auto* text =
        makeCaption(QStringLiteral("No keys yet \u2014 click \"Add Key\" to import your private key file"),
                    theme.font(11), hint);
    text->setObjectName(QStringLiteral("noKeysHint"));
    text->setWordWrap(true);
    auto* layout = new QHBoxLayout(hint);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight + 2);
    layout->addWidget(new IconView(theme, Icon::infoCircle, kHintIconSize, &Palette::secondary, hint), 0,
                      Qt::AlignVCenter);
    layout->addWidget(text, 1);
    return hint;
}

} // namespace

InlineKeyPickerView::InlineKeyPickerView(const MainWindowContext& context, TunnelBinding& binding,
                                         QWidget* parent)
    : QWidget(parent),
      context_(context),
      binding_(binding),
      menu_(new ChoiceMenu(
          context.theme, [this](int choice) { choose(choice); }, this)),
      mark_(new IconView(context.theme, Icon::checkCircle, kMarkSize, &Palette::green, this)),
      deselect_(makeIconButton(context.theme, Icon::clear, QStringLiteral("Deselect key"),
                               QStringLiteral("deselectKeyButton"), this)),
      add_(makeButton(QStringLiteral("Add Key"), ButtonRole::plain, QStringLiteral("addKeyButton"), this)),
      hint_(makeHint(context.theme, this)),
      self_(*this) {
    setObjectName(QStringLiteral("keyPicker"));
    menu_->setObjectName(QStringLiteral("keyMenu"));
    menu_->setMinimumWidth(kNarrowestMenu);
    mark_->setObjectName(QStringLiteral("keyAddedMark"));
    mark_->hide();
    deselect_->setIconSize(QSize(kMarkSize, kMarkSize));
    add_->setFont(context.theme.font(13));
    add_->setIcon(themedIcon(context.theme, Icon::plus, &Palette::text));
    add_->setIconSize(QSize(kPlusSize, kPlusSize));
    connect(deselect_, &QToolButton::clicked, this,
            [this] { binding_.write(&Tunnel::identityKeyID, std::nullopt); });
    connect(add_, &QPushButton::clicked, this, [this] { askForFile(); });
    layOut();
    rebuildMenu();
    keysChanged_ = context.keys.changed.connect([this] { rebuildMenu(); });
}

void InlineKeyPickerView::layOut() {
    auto* line = new QHBoxLayout;
    line->setSpacing(grid::kSmall);
    line->addWidget(menu_, 1);
    line->addWidget(mark_);
    line->addWidget(deselect_);
    line->addWidget(add_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall - 2);
    layout->addLayout(line);
    layout->addWidget(hint_);
}

QWidget* InlineKeyPickerView::menu() const {
    return menu_;
}

void InlineKeyPickerView::rebuildMenu() {
    menu_->clearChoices();
    menu_->addChoice(Icon::key, QStringLiteral("None / SSH Agent"));
    for (const IdentityKey& key : context_.keys.keys()) {
        menu_->addChoice(Icon::key, displayLine(key.name));
    }
    hint_->setVisible(context_.keys.keys().empty());
    refresh();
}

void InlineKeyPickerView::refresh() {
    const auto& selected = binding_.value().identityKeyID;
    const auto& keys = context_.keys.keys();
    const auto found = selected ? std::ranges::find(keys, *selected, &IdentityKey::id) : keys.end();
    const bool chosen = found != keys.end();
    menu_->showChoice(chosen ? static_cast<int>(found - keys.begin()) + 1 : 0);
    setTextToolTip(*menu_, chosen ? displayLine(found->path) : QString());
    deselect_->setVisible(chosen);
    mark_->setVisible(chosen && justAdded_ == selected);
}

void InlineKeyPickerView::choose(int choice) {
    const auto& keys = context_.keys.keys();
    const auto at = static_cast<std::size_t>(choice);
    std::optional<support::Uuid> id;
    if (choice > 0 && at <= keys.size()) {
        id = keys[at - 1].id;
    }
    binding_.write(&Tunnel::identityKeyID, id);
}

void InlineKeyPickerView::askForFile() {
    if (std::exchange(asking_, true)) {
        return;
    }
    platform::OpenFileRequest request;
    request.title = "Select SSH Private Key";
    request.message = "Choose your private key file (id_rsa, id_ed25519, .pem, etc.)";
    request.folder = context_.host.homeFolder() + "/.ssh";
    context_.dialogs.openFile(
        request, [weak = self_.weak(), tunnelID = binding_.value().id](const std::optional<std::string>& path) {
            auto* self = weak.get();
            if (self == nullptr) {
                return;
            }
            self->asking_ = false;
            if (path) {
                self->fileChosen(*path, tunnelID);
            }
        });
}

void InlineKeyPickerView::fileChosen(const std::string& path, const support::Uuid& tunnelID) {
    const auto& keys = context_.keys.keys();
    const auto known = std::ranges::find(keys, path, &IdentityKey::path);
    support::Uuid id;
    if (known != keys.end()) {
        id = known->id;
    } else {
        id = support::Uuid::random();
        context_.keys.add({id, path.substr(path.rfind('/') + 1), path, "", context_.clock.now()});
    }
    binding_.edit(tunnelID, [&](Tunnel& tunnel) { tunnel.identityKeyID = id; });
    setJustAdded(id);
    context_.dispatch.mainAfter(kJustAddedDelay, [weak = self_.weak()] {
        if (auto* self = weak.get()) {
            self->setJustAdded(std::nullopt);
        }
    });
}

void InlineKeyPickerView::setJustAdded(std::optional<support::Uuid> id) {
    justAdded_ = id;
    refresh();
}

} // namespace fernwick
