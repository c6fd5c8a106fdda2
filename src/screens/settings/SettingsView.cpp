#include "screens/settings/SettingsView.h"

#include "screens/settings/GeneralSettingsView.h"
#include "screens/settings/IdentitySettingsView.h"
#include "screens/settings/KnownHostsSettingsView.h"
#include "screens/settings/TagsSettingsView.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QHBoxLayout>
#include <QStackedWidget>

#include <utility>

namespace fernwick {

SettingsView::SettingsView(SettingsContext context, QWidget* parent)
    : QWidget(parent), context_(std::move(context)) {
    tabs_ = new SettingsTabBar(context_.theme, [this](SettingsTab tab) { turnTo(tab); }, this);
    pages_ = new QStackedWidget(this);
    pages_->setFocusPolicy(Qt::ClickFocus); // a place for the keyboard where nothing shows it
    auto* row = new QHBoxLayout;
    row->setContentsMargins(grid::kLarge, grid::kSmall, grid::kLarge, grid::kSmall);
    row->addStretch();
    row->addWidget(tabs_);
    row->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(row);
    layout->addWidget(new Divider(context_.theme, this));
    layout->addWidget(pages_, 1);
    turnTo(SettingsTab::general);
    pages_->setFocus();
}

void SettingsView::showUpdateOutcome(const std::string& text) {
    general_->showUpdateOutcome(text);
}

// The keyboard stays on the tabs if it is there; else the tab key leads to the first control of the new page.
void SettingsView::turnTo(SettingsTab tab) {
    auto*& page = made_.at(static_cast<std::size_t>(tab));
    if (page == nullptr) {
        page = makePage(tab);
        pages_->addWidget(page);
    }
    const bool wasInPage = pages_->isAncestorOf(focusWidget());
    pages_->setCurrentWidget(page);
    pages_->setAccessibleName(tabs_->tabText(static_cast<int>(tab))); // read when the keyboard comes there
    if (wasInPage) {
        pages_->setFocus();
    }
}

QWidget* SettingsView::makePage(SettingsTab tab) {
    switch (tab) {
    case SettingsTab::general:
        general_ = new GeneralSettingsView(context_, pages_);
        return general_;
    case SettingsTab::identity:
        return new IdentitySettingsView(context_, pages_);
    case SettingsTab::knownHosts:
        return new KnownHostsSettingsView(context_, pages_);
    case SettingsTab::tags:
        return new TagsSettingsView(context_.theme, context_.tags, pages_);
    case SettingsTab::sync:
        break;
    }
    auto* page = context_.makeSyncPage ? context_.makeSyncPage(pages_) : nullptr;
    return page != nullptr ? page : new QWidget(pages_);
}

} // namespace fernwick
