#include "screens/detail/LogsTabView.h"

#include "screens/detail/LogListModel.h"
#include "screens/detail/LogListView.h"
#include "screens/theme/Grid.h"

#include <QCheckBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace fernwick {

namespace {

constexpr int kEmptyIconSize = 32;
constexpr int kTrashSize = 15;
constexpr int kListPadding = 8;

} // namespace

LogsTabView::LogsTabView(const Theme& theme, TunnelManager& manager, platform::Dispatch& dispatch,
                         QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      manager_(manager),
      model_(new LogListModel(this)),
      list_(new LogListView(theme, *model_, this)),
      pages_(new QStackedWidget(this)),
      refreshSoon_(dispatch, [this] { refresh(); }) {
    setObjectName(QStringLiteral("logsTab"));
    list_->setObjectName(QStringLiteral("logList"));
    list_->setAccessibleName(QStringLiteral("Logs"));
    auto* lines = new QWidget(pages_);
    auto* padding = new QVBoxLayout(lines);
    padding->setContentsMargins(kListPadding, kListPadding, 2, kListPadding);
    padding->addWidget(list_);
    pages_->addWidget(buildEmptyState());
    pages_->addWidget(lines);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());
    layout->addWidget(new Divider(theme, this));
    layout->addWidget(pages_, 1);
    logChanged_ = manager.logs().changed.connect([this](const support::Uuid& id) {
        if (id == tunnelID_ && isVisible()) {
            refreshSoon_.request();
        }
    });
}

QWidget* LogsTabView::buildHeader() {
    auto* header = new QWidget(this);
    count_ = makeCaption(QString(), theme_.font(12), header);
    count_->setObjectName(QStringLiteral("logCount"));
    autoScroll_ = new QCheckBox(QStringLiteral("Auto-scroll"), header);
    autoScroll_->setObjectName(QStringLiteral("autoScrollCheckBox"));
    autoScroll_->setFont(theme_.font(12));
    autoScroll_->setChecked(true);
    auto* clear =
        makeButton(QStringLiteral("Clear"), ButtonRole::borderless, QStringLiteral("logClearButton"), header);
    clear->setFont(theme_.font(12));
    clear->setIcon(themedIcon(theme_, Icon::trash, &Palette::secondary));
    clear->setIconSize(QSize(kTrashSize, kTrashSize));
    connect(clear, &QPushButton::clicked, this, [this] { manager_.logs().clear(tunnelID_); });
    auto* layout = new QHBoxLayout(header);
    layout->setContentsMargins(grid::kMedium + 2, grid::kTight, grid::kSmall, grid::kTight);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(count_);
    layout->addStretch();
    layout->addWidget(autoScroll_);
    layout->addWidget(clear);
    return header;
}

QWidget* LogsTabView::buildEmptyState() {
    auto* page = new QWidget(pages_);
    auto* text =
        makeCaption(QStringLiteral("No logs yet. Connect to start seeing output."), theme_.font(13), page);
    text->setObjectName(QStringLiteral("logEmptyText"));
    auto* layout = new QVBoxLayout(page);
    layout->setSpacing(grid::kMedium);
    layout->addStretch(1);
    layout->addWidget(new IconView(theme_, Icon::terminal, kEmptyIconSize, &Palette::placeholder, page), 0,
                      Qt::AlignHCenter);
    layout->addWidget(text, 0, Qt::AlignHCenter);
    layout->addStretch(1);
    return page;
}

void LogsTabView::setTunnel(const support::Uuid& tunnelID) {
    tunnelID_ = tunnelID;
    refresh();
}

void LogsTabView::followLines() {
    autoScroll_->setChecked(true);
}

void LogsTabView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refreshSoon_.request(); // what came while it could not be seen
}

void LogsTabView::refresh() {
    const bool changed = model_->setEntries(manager_.logs().lines(tunnelID_));
    const int lines = model_->rowCount();
    count_->setText(QStringLiteral("%1 entries").arg(lines));
    pages_->setCurrentIndex(lines == 0 ? 0 : 1);
    if (changed && lines > 0 && autoScroll_->isChecked()) {
        list_->scrollToEnd();
    }
}

} // namespace fernwick
