#include "screens/detail/AdvancedTabView.h"

#include "screens/detail/KeepAliveSlider.h"
#include "screens/detail/LabeledField.h"
#include "screens/detail/SSHCommandPreview.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Switch.h"

#include <QSignalBlocker>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kSliderWidth = 150;
constexpr int kSecondsWidth = 40;

void showState(Switch& control, bool on) {
    const QSignalBlocker quiet(&control);
    control.setChecked(on);
}

} // namespace

AdvancedTabView::AdvancedTabView(const MainWindowContext& context, TunnelBinding& binding, QWidget* parent)
    : FormPage(context.theme, parent), context_(context), binding_(binding) {
    setObjectName(QStringLiteral("advancedTab"));
    buildConnection();
    auto& section = *addSection(QStringLiteral("SSH Command Preview"), Icon::terminal);
    preview_ = new SSHCommandPreview(context.theme, context.pasteboard, context.dispatch, section.card());
    section.addRow(preview_);
    refresh();
}

void AdvancedTabView::buildConnection() {
    auto& section = *addSection(QStringLiteral("Connection"), Icon::network);
    section.addRow(buildKeepAlive());
    section.addRow(new Divider(context_.theme, section.card()));
    reconnect_ = addSwitch(section, QStringLiteral("Auto Reconnect"),
                           QStringLiteral("Retry up to 5 times on failure"), &Tunnel::reconnectOnFailure);
    reconnect_->setObjectName(QStringLiteral("autoReconnectSwitch"));
    section.addRow(new Divider(context_.theme, section.card()));
    compression_ = addSwitch(section, QStringLiteral("Compression"),
                             QStringLiteral("Enable SSH compression (-C flag)"), &Tunnel::compression);
    compression_->setObjectName(QStringLiteral("compressionSwitch"));
}

QWidget* AdvancedTabView::buildKeepAlive() {
    auto* line = new QWidget(this);
    keepAlive_ =
        new KeepAliveSlider([this](int seconds) { binding_.write(&Tunnel::keepAliveInterval, seconds); }, line);
    keepAlive_->setObjectName(QStringLiteral("keepAliveSlider"));
    keepAlive_->setFixedWidth(kSliderWidth);
    keepAliveText_ = new ElidedLabel(line);
    keepAliveText_->setObjectName(QStringLiteral("keepAliveText"));
    keepAliveText_->setFont(context_.theme.monospaced(12));
    keepAliveText_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    keepAliveText_->setForegroundRole(QPalette::PlaceholderText);
    keepAliveText_->setFixedWidth(
        std::max(kSecondsWidth, keepAliveText_->fontMetrics().horizontalAdvance(QStringLiteral("300s"))));
    auto* layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kMedium);
    layout->addStretch();
    layout->addWidget(keepAlive_);
    layout->addWidget(keepAliveText_);
    auto* row = new LabeledField(context_.theme, QStringLiteral("Keep-Alive (sec)"), line, this, keepAlive_);
    row->name().setForegroundRole(QPalette::WindowText); // as the names of the rows below it
    return row;
}

Switch* AdvancedTabView::addSwitch(FormSection& section, const QString& label, const QString& caption,
                                   bool Tunnel::* field) {
    auto* control = new Switch(context_.theme, this);
    section.addRow(new LabeledField(context_.theme, label, control, section.card(), control, caption));
    connect(control, &QCheckBox::toggled, this, [this, field](bool on) { binding_.write(field, on); });
    return control;
}

void AdvancedTabView::refresh() {
    const Tunnel& tunnel = binding_.value();
    keepAlive_->showStored(tunnel.keepAliveInterval);
    const QString seconds = QStringLiteral("%1s").arg(tunnel.keepAliveInterval);
    keepAliveText_->setText(seconds);
    keepAliveText_->setToolTip(seconds);
    showState(*reconnect_, tunnel.reconnectOnFailure);
    showState(*compression_, tunnel.compression);
    preview_->showTunnel(tunnel);
}

} // namespace fernwick
