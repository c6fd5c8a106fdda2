#include "screens/detail/TunnelStatusBar.h"

#include "screens/detail/ConnectButton.h"
#include "screens/detail/InfoPill.h"
#include "screens/detail/StatusMark.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StatusColors.h"

#include <QEvent>
#include <QHBoxLayout>

namespace fernwick {

namespace {

constexpr int kLongestPort = 32;

QString portText(const std::string& port) {
    return port.empty() ? QString() : QLatin1Char(':') + displayLine(port, kLongestPort);
}

} // namespace

TunnelStatusBar::TunnelStatusBar(const Theme& theme, TunnelManager& manager, TunnelStore& store,
                                 const platform::Clock& clock, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      manager_(manager),
      store_(store),
      clock_(clock),
      mark_(new StatusMark(theme, this)),
      status_(new ElidedLabel(this)),
      last_(new ElidedLabel(this)),
      localPort_(new InfoPill(theme, Icon::circleRight, this)),
      remotePort_(new InfoPill(theme, Icon::server, this)),
      button_(new ConnectButton(theme, this)) {
    setObjectName(QStringLiteral("tunnelStatusBar"));
    status_->setObjectName(QStringLiteral("statusText"));
    status_->setFont(theme.font(12, QFont::DemiBold));
    last_->setObjectName(QStringLiteral("lastConnected"));
    last_->setFont(theme.monospaced(10));
    last_->setForegroundRole(QPalette::PlaceholderText);
    localPort_->setObjectName(QStringLiteral("localPortPill"));
    localPort_->setToolTip(QStringLiteral("Local Port"));
    remotePort_->setObjectName(QStringLiteral("remotePortPill"));
    remotePort_->setToolTip(QStringLiteral("Remote Port"));
    connect(button_, &QPushButton::clicked, this, [this] { toggle(); });

    auto* lines = new QVBoxLayout;
    lines->setSpacing(1);
    lines->addStretch();
    lines->addWidget(status_);
    lines->addWidget(last_);
    lines->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(grid::kMedium, grid::kMedium, grid::kMedium, grid::kMedium);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(mark_);
    layout->addSpacing(2);
    layout->addLayout(lines, 1);
    layout->addWidget(localPort_);
    layout->addWidget(remotePort_);
    layout->addSpacing(grid::kTight);
    layout->addWidget(button_);
}

void TunnelStatusBar::setTunnel(const Tunnel& tunnel) {
    tunnel_ = tunnel;
    localPort_->setText(portText(tunnel.localPort));
    remotePort_->setText(portText(tunnel.remotePort));
    refreshStatus();
}

void TunnelStatusBar::refreshStatus() {
    const auto status = manager_.status(tunnel_.id);
    const QString text = displayLine(status.value_or(TunnelStatus::idle()).statusText());
    QPalette palette;
    palette.setColor(QPalette::WindowText, statusColor(status, theme_.colors()));
    status_->setPalette(palette);
    status_->setText(text);
    setTextToolTip(*status_, status && status->kind() == TunnelStatus::Kind::error ? text : QString());
    mark_->setStatus(status);
    button_->setStatus(status);
    refreshLastConnected();
}

void TunnelStatusBar::refreshLastConnected() {
    last_->setVisible(tunnel_.lastConnectedAt.has_value());
    if (tunnel_.lastConnectedAt) {
        last_->setText(QStringLiteral("Last: ") +
                       QString::fromStdString(relative_.text(*tunnel_.lastConnectedAt, clock_.now())));
    }
}

void TunnelStatusBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        refreshStatus();
    }
}

bool TunnelStatusBar::event(QEvent* event) {
    if (event->type() == QEvent::Enter || event->type() == QEvent::WindowActivate ||
        event->type() == QEvent::Show) {
        refreshLastConnected();
    }
    return QWidget::event(event);
}

void TunnelStatusBar::toggle() {
    if (manager_.isActive(tunnel_.id)) {
        manager_.disconnect(tunnel_.id);
    } else {
        manager_.connect(tunnel_, store_);
    }
}

} // namespace fernwick
