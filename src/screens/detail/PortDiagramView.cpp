#include "screens/detail/PortDiagramView.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

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
    : QWidget(parent), local_(new ElidedLabel(this)), remote_(new ElidedLabel(this)) {
    setObjectName(QStringLiteral("portDiagram"));
    setLayoutDirection(Qt::LeftToRight); // the arrows say which way it goes
    local_->setObjectName(QStringLiteral("diagramLocal"));
    remote_->setObjectName(QStringLiteral("diagramRemote"));
    for (auto* end : {local_, remote_}) {
        end->setFont(theme.monospaced(10));
        end->setAlignment(Qt::AlignCenter);
        end->setLayoutDirection(Qt::LeftToRight);
    }
    auto* ssh = makeLabel(QStringLiteral("SSH"), theme.font(9, QFont::Bold), this);
    ssh->setObjectName(QStringLiteral("diagramSSH"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kMedium);
    const auto addArrow = [&] {
        layout->addWidget(new IconView(theme, Icon::arrowRight, kArrowSize, &Palette::secondary, this));
    };
    layout->addWidget(makeNode(theme, Icon::laptop, &Palette::blue, local_), 1);
    addArrow();
    layout->addWidget(makeNode(theme, Icon::lock, &Palette::orange, ssh));
    addArrow();
    layout->addWidget(makeNode(theme, Icon::server, &Palette::green, remote_), 1);
}

QWidget* PortDiagramView::makeNode(const Theme& theme, Icon icon, NamedColor color, QLabel* text) {
    auto* node = new QWidget(this);
    auto* layout = new QVBoxLayout(node);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight);
    layout->addWidget(new IconView(theme, icon, kIconSize, color, node), 0, Qt::AlignHCenter);
    layout->addWidget(text);
    return node;
}

void PortDiagramView::showTunnel(const Tunnel& tunnel) {
    local_->setText(QStringLiteral("localhost:") + orElse(tunnel.localPort, "?"));
    remote_->setText(orElse(tunnel.remoteHost, "host") + QLatin1Char(':') + orElse(tunnel.remotePort, "?"));
}

} // namespace fernwick
