#include "screens/detail/DetailHeader.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"

#include <QHBoxLayout>
#include <QToolButton>
#include <QVBoxLayout>

namespace fernwick {

DetailHeader::DetailHeader(const Theme& theme, std::function<void()> onToggleSidebar, QWidget* parent)
    : QWidget(parent), name_(new ElidedLabel(this)), login_(new ElidedLabel(this)) {
    setFixedHeight(grid::kHeaderHeight);
    auto* toggle = makeIconButton(theme, Icon::sidebar, QStringLiteral("Show or hide the sidebar"),
                                  QStringLiteral("sidebarToggleButton"), this);
    connect(toggle, &QToolButton::clicked, this, std::move(onToggleSidebar));
    name_->setObjectName(QStringLiteral("detailName"));
    name_->setFont(theme.font(15, QFont::DemiBold));
    login_->setObjectName(QStringLiteral("detailLogin"));
    login_->setFont(theme.font(11));
    login_->setLayoutDirection(Qt::LeftToRight);
    login_->setForegroundRole(QPalette::PlaceholderText);

    auto* lines = new QVBoxLayout;
    lines->setSpacing(0);
    lines->addStretch();
    lines->addWidget(name_);
    lines->addWidget(login_);
    lines->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(grid::kMedium, 0, grid::kLarge, 0);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(toggle);
    layout->addLayout(lines, 1);
}

void DetailHeader::setTunnel(const Tunnel* tunnel) {
    name_->setVisible(tunnel != nullptr);
    login_->setVisible(tunnel != nullptr);
    if (tunnel != nullptr) {
        name_->setText(displayLine(tunnel->name));
        login_->setText(displayLine(tunnel->user) + QLatin1Char('@') + displayLine(tunnel->host) +
                        QLatin1Char(':') + displayLine(tunnel->sshPort));
    }
}

} // namespace fernwick
