#include "screens/routing/ProxyRuleWindow.h"

#include "screens/routing/ProxiesListView.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QShortcut>
#include <QStackedWidget>

#include <utility>

namespace fernwick {

namespace {

constexpr int kInfoSize = 14;

} // namespace

ProxyRuleWindow::ProxyRuleWindow(const RoutingContext& context, TunnelNames tunnels,
                                 OpenRuleEditor openRuleEditor)
    : theme_(context.theme), tunnels_(std::move(tunnels)) {
    setObjectName(QStringLiteral("proxyRuleWindow"));
    setWindowTitle(QStringLiteral("Proxies & Rules"));
    setWindowIcon(themedIcon(context.theme, Icon::application, &Palette::text));
    setMinimumSize(kMinimumWidth, kMinimumHeight);
    resize(kWidth, kHeight);
    auto* row = buildTabRow(context);
    pages_ = new QStackedWidget(this);
    proxies_ = new ProxiesListView(context, tunnels_, pages_);
    rules_ = new RulesListView(context, tunnels_, std::move(openRuleEditor), pages_);
    pages_->addWidget(proxies_);
    pages_->addWidget(rules_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(row);
    layout->addWidget(new Divider(context.theme, this));
    layout->addWidget(pages_, 1);
    addShortcuts();
    proxies_->focusList();
}

QWidget* ProxyRuleWindow::buildTabRow(const RoutingContext& context) {
    auto* row = new QWidget(this);
    row->setMinimumHeight(grid::kHeaderHeight);
    tabs_ = new ProxyRuleTabBar(context.theme, context.store, [this](ProxyRuleTab tab) { turnTo(tab); }, row);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(grid::kMedium, 0, grid::kLarge, 0);
    layout->setSpacing(grid::kTight + 1);
    layout->addWidget(tabs_, 0, Qt::AlignVCenter);
    layout->addStretch();
    layout->addWidget(new IconView(context.theme, Icon::infoCircle, kInfoSize, &Palette::secondary, row));
    layout->addWidget(makeCaption(QStringLiteral("Changes apply immediately"), context.theme.font(11), row));
    return row;
}

// The keyboard stays on the tabs if it is there, and does not end up in whatever follows a list that goes.
void ProxyRuleWindow::turnTo(ProxyRuleTab tab) {
    const bool wasInPage = pages_->isAncestorOf(focusWidget());
    pages_->setCurrentIndex(std::to_underlying(tab));
    if (wasInPage) {
        current().focusList();
    }
}

void ProxyRuleWindow::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(QKeySequence(Qt::CTRL | Qt::Key_F), [this] { current().focusSearch(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_N), [this] { current().add(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_W), [this] { close(); });
}

RecordTab& ProxyRuleWindow::current() const {
    return selectedTab() == ProxyRuleTab::proxies ? static_cast<RecordTab&>(*proxies_) : *rules_;
}

void ProxyRuleWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (onClose) {
        onClose();
    }
}

void ProxyRuleWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), theme_.colors().window);
}

} // namespace fernwick
