#include "screens/routing/ListColumn.h"

#include "screens/main/SearchRow.h"
#include "screens/routing/ProxyRuleEmptyState.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QStackedWidget>
#include <QToolButton>

#include <utility>

namespace fernwick {

namespace {

constexpr int kFooterHeight = 40;
constexpr int kSearchHeight = 40;

QString widgetName(const ListColumnTexts& texts, const char* part) {
    return texts.name.toLower() + QLatin1String(part);
}

} // namespace

ListColumn::ListColumn(const Theme& theme, platform::Dispatch& dispatch, const ListColumnTexts& texts,
                       ListColumnCallbacks callbacks, ListGestures gestures, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      search_(new SearchRow(theme, texts.placeholder, widgetName(texts, "SearchField"),
                            std::move(callbacks.search), this)),
      pages_(new QStackedWidget(this)),
      list_(new RoutingListView(theme, dispatch, std::move(gestures), pages_)),
      empty_(new ProxyRuleEmptyState(theme, pages_)) {
    setMinimumWidth(kMinimumWidth);
    setMaximumWidth(kMaximumWidth);
    search_->setMinimumHeight(kSearchHeight);
    list_->setObjectName(widgetName(texts, "List"));
    list_->setAccessibleName(texts.name);
    pages_->setFocusPolicy(Qt::ClickFocus);
    pages_->addWidget(list_);
    pages_->addWidget(empty_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(search_);
    layout->addWidget(new Divider(theme, this));
    layout->addWidget(pages_, 1);
    layout->addWidget(new Divider(theme, this));
    layout->addWidget(buildFooter(texts, std::move(callbacks)));
}

QWidget* ListColumn::buildFooter(const ListColumnTexts& texts, ListColumnCallbacks callbacks) {
    auto* footer = new QWidget(this);
    footer->setMinimumHeight(kFooterHeight);
    auto* add = makeIconButton(theme_, Icon::plus, texts.addHelp, widgetName(texts, "AddButton"), footer);
    remove_ = makeIconButton(theme_, Icon::minus, texts.removeHelp, widgetName(texts, "RemoveButton"), footer);
    connect(add, &QToolButton::clicked, this, std::move(callbacks.add));
    connect(remove_, &QToolButton::clicked, this, std::move(callbacks.remove));
    count_ = makeCaption(QString(), theme_.font(11), footer);
    count_->setObjectName(widgetName(texts, "Count"));
    auto* layout = new QHBoxLayout(footer);
    layout->setContentsMargins(grid::kSmall + 2, 0, grid::kLarge, 0);
    layout->setSpacing(grid::kTight);
    layout->addWidget(add);
    layout->addWidget(remove_);
    layout->addStretch();
    layout->addWidget(count_);
    return footer;
}

void ListColumn::showList() {
    pages_->setCurrentWidget(list_);
}

void ListColumn::showEmpty(Icon icon, const QString& title, const QString& subtitle) {
    empty_->show(icon, title, subtitle);
    pages_->setCurrentWidget(empty_);
    pages_->setAccessibleName(title + QLatin1String(", ") + subtitle); // it may have the keyboard
}

void ListColumn::setCount(const QString& text) {
    count_->setText(text);
}

void ListColumn::setRemovable(bool removable) {
    remove_->setEnabled(removable);
}

void ListColumn::focusSearch() {
    search_->focusField();
}

void ListColumn::focusList() {
    if (pages_->currentWidget() == list_) {
        list_->setFocus();
    } else {
        pages_->setFocus(); // where nothing shows it, so that no button stands out in an empty window
    }
}

void ListColumn::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), theme_.colors().sidebar);
}

} // namespace fernwick
