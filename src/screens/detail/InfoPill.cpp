#include "screens/detail/InfoPill.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QHBoxLayout>
#include <QPainter>

namespace fernwick {

namespace {

constexpr int kIconSize = 12;
constexpr int kHeight = 24;
constexpr int kWidest = 120;

} // namespace

InfoPill::InfoPill(const Theme& theme, Icon icon, QWidget* parent)
    : QWidget(parent), theme_(theme), text_(new ElidedLabel(this)) {
    text_->setFont(theme.monospaced(11));
    text_->setForegroundRole(QPalette::PlaceholderText);
    text_->setMaximumWidth(kWidest);
    setFixedHeight(kHeight);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(grid::kSmall, 0, grid::kSmall, 0);
    layout->setSpacing(grid::kTight);
    layout->addWidget(new IconView(theme, icon, kIconSize, &Palette::secondary, this));
    layout->addWidget(text_);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void InfoPill::setText(const QString& text) {
    text_->setText(text);
    setVisible(!text.isEmpty());
}

void InfoPill::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    stylepaint::roundedBox(painter, QRectF(rect()), theme_.colors().hover, Qt::transparent, kHeight / 2.0);
}

} // namespace fernwick
