#include "screens/routing/ProxyRuleEmptyState.h"

#include "screens/theme/Grid.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace fernwick {

namespace {

constexpr int kIconSize = 36;
constexpr double kIconOpacity = 0.5;
constexpr double kSubtitleOpacity = 0.7;

} // namespace

ProxyRuleEmptyState::ProxyRuleEmptyState(const Theme& theme, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      iconRoom_(new QWidget(this)),
      title_(makeLabel(QString(), theme.font(14, QFont::Medium), this)),
      subtitle_(makeCaption(QString(), theme.font(12), this)) {
    setObjectName(QStringLiteral("emptyState"));
    title_->setObjectName(QStringLiteral("emptyTitle"));
    subtitle_->setObjectName(QStringLiteral("emptySubtitle"));
    iconRoom_->setFixedSize(kIconSize, kIconSize);
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(grid::kTight);
    layout->addStretch(2);
    layout->addWidget(iconRoom_, 0, Qt::AlignHCenter);
    layout->addSpacing(grid::kSmall);
    layout->addWidget(title_, 0, Qt::AlignHCenter);
    layout->addWidget(subtitle_, 0, Qt::AlignHCenter);
    layout->addStretch(3);
    tint();
}

void ProxyRuleEmptyState::show(Icon icon, const QString& title, const QString& subtitle) {
    icon_ = icon;
    title_->setText(title);
    subtitle_->setText(subtitle);
    update();
}

void ProxyRuleEmptyState::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        tint();
    }
}

void ProxyRuleEmptyState::tint() {
    QPalette palette;
    palette.setColor(QPalette::PlaceholderText, withOpacity(theme_.colors().secondary, kSubtitleOpacity));
    subtitle_->setPalette(palette);
}

void ProxyRuleEmptyState::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setOpacity(kIconOpacity);
    theme_.icons().paint(painter, icon_, theme_.colors().secondary, QRectF(iconRoom_->geometry()), kIconSize);
}

} // namespace fernwick
