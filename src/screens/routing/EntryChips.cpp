#include "screens/routing/EntryChips.h"

#include "screens/routing/EntryChip.h"
#include "screens/theme/FlowLayout.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QVBoxLayout>

#include <algorithm>

namespace fernwick {

EntryChips::EntryChips(const Theme& theme, std::function<void(const support::Uuid&)> onDelete, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      onDelete_(std::move(onDelete)),
      hint_(buildHint()),
      rows_(new QWidget(this)) {
    setObjectName(QStringLiteral("entryChips"));
    new FlowLayout(rows_, kSpacing);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(hint_);
    layout->addWidget(rows_);
    showChipsOrHint();
}

QWidget* EntryChips::buildHint() {
    auto* hint = new QWidget(this);
    auto* any = makeLabel(QStringLiteral("Any application / IP"), theme_.font(13), hint);
    any->setObjectName(QStringLiteral("anyApplicationLabel"));
    auto* forms = makeCaption(QStringLiteral("App name \u00B7 bundle ID (com.apple.*) \u00B7 IP \u00B7 range "
                                             "(10.0.0.0-10.255.255.255) \u00B7 CIDR (192.168.0.0/24)"),
                              theme_.font(11), hint);
    forms->setObjectName(QStringLiteral("entryFormsHint"));
    forms->setWordWrap(true);
    auto* layout = new QVBoxLayout(hint);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(any);
    layout->addWidget(forms);
    return hint;
}

void EntryChips::add(const std::vector<AppEntry>& entries) {
    for (const auto& entry : entries) {
        auto* chip = new EntryChip(theme_, entry, [this, id = entry.id] { onDelete_(id); }, rows_);
        rows_->layout()->addWidget(chip);
        chips_.push_back(chip);
    }
    showChipsOrHint();
}

bool EntryChips::remove(const support::Uuid& id) {
    const auto found = std::ranges::find_if(chips_, [&](const auto* chip) { return chip->entry().id == id; });
    if (found == chips_.end()) {
        return false;
    }
    auto* gone = *found;
    const auto next = chips_.erase(found);
    const bool hadFocus = gone->isAncestorOf(window()->focusWidget());
    if (hadFocus && !chips_.empty()) {
        (next != chips_.end() ? *next : chips_.back())->focusButton();
    }
    rows_->layout()->removeWidget(gone);
    gone->hide();
    gone->deleteLater(); // its button is what brought us here
    showChipsOrHint();
    return hadFocus && chips_.empty();
}

void EntryChips::showChipsOrHint() {
    hint_->setVisible(chips_.empty());
    rows_->setVisible(!chips_.empty());
}

} // namespace fernwick
