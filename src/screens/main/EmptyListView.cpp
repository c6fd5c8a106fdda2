#include "screens/main/EmptyListView.h"

#include "screens/theme/Grid.h"

#include <QVBoxLayout>

namespace fernwick {

namespace {

constexpr int kIconSize = 28;

} // namespace

EmptyListView::EmptyListView(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      icon_(new IconView(theme, Icon::networkOff, kIconSize, &Palette::secondary, this)),
      text_(makeCaption(QString(), theme.font(12), this)) {
    setObjectName(QStringLiteral("tunnelListEmpty"));
    text_->setObjectName(QStringLiteral("tunnelListEmptyText"));
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(grid::kSmall);
    layout->addStretch(2);
    layout->addWidget(icon_, 0, Qt::AlignHCenter);
    layout->addWidget(text_, 0, Qt::AlignHCenter);
    layout->addStretch(3);
    setSearching(false);
}

void EmptyListView::setSearching(bool searching) {
    icon_->setIcon(searching ? Icon::magnifier : Icon::networkOff);
    text_->setText(searching ? QStringLiteral("No results") : QStringLiteral("No tunnels yet"));
}

} // namespace fernwick
