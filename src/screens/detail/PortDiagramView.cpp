#include "screens/detail/PortDiagramView.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QEvent>
#include <QHBoxLayout>

namespace fernwick {

namespace {

constexpr int kIconSize = 16;
constexpr int kArrowSize = 16;

QString orElse(const std::string& text, const char* placeholder) {
    return text.empty() ? QString::fromLatin1(placeholder) : displayLine(text);
}

} // namespace

PortDiagramView::PortDiagramView(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      local_(new ElidedLabel(this)),
      ssh_(makeLabel(QStringLiteral("SSH"), theme.font(9, QFont::Bold), this)),
      remote_(new ElidedLabel(this)) {
    setObjectName(QStringLiteral("portDiagram"));
    setLayoutDirection(Qt::LeftToRight); // the arrows say which way it goes
    local_->setObjectName(QStringLiteral("diagramLocal"));
    remote_->setObjectName(QStringLiteral("diagramRemote"));
    for (auto* end : {local_, remote_}) {
        end->setFont(theme.monospaced(10));
        end->setAlignment(Qt::AlignCenter);
        end->setLayoutDirection(Qt::LeftToRight);
    }
    ssh_->setObjectName(QStringLiteral("diagramSSH"));
    ssh_->setAlignment(Qt::AlignCenter);
    tint();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kLarge);
    const auto addArrow = [&] {
        layout->addWidget(new IconView(theme, Icon::arrowRight, kArrowSize, &Palette::secondary, this));
    };
    layout->addStretch();
    layout->addWidget(makeNode(Icon::laptop, &Palette::blue, local_));
    addArrow();
    layout->addWidget(makeNode(Icon::lock, &Palette::orange, ssh_));
    addArrow();
    layout->addWidget(makeNode(Icon::server, &Palette::green, remote_));
    layout->addStretch();
}

void PortDiagramView::tint() {
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme_.colors().orange);
    ssh_->setPalette(palette);
}

void PortDiagramView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        tint();
    }
}

QWidget* PortDiagramView::makeNode(Icon icon, NamedColor color, QLabel* text) {
    auto* node = new QWidget(this);
    auto* layout = new QVBoxLayout(node);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight);
    layout->addWidget(new IconView(theme_, icon, kIconSize, color, node), 0, Qt::AlignHCenter);
    layout->addWidget(text);
    return node;
}

void PortDiagramView::showTunnel(const Tunnel& tunnel) {
    local_->setText(QStringLiteral("localhost:") + orElse(tunnel.localPort, "?"));
    remote_->setText(orElse(tunnel.remoteHost, "host") + QLatin1Char(':') + orElse(tunnel.remotePort, "?"));
}

} // namespace fernwick
