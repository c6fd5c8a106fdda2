#include "screens/main/StatBadge.h"

#include <QEvent>
#include <QVBoxLayout>

namespace fernwick {

StatBadge::StatBadge(const Theme& theme, const QString& label, NamedColor color, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      color_(color),
      number_(makeLabel(QStringLiteral("0"), theme.font(17, QFont::DemiBold), this)) {
    auto* caption = makeCaption(label, theme.font(11), this);
    number_->setAlignment(Qt::AlignCenter);
    caption->setAlignment(Qt::AlignCenter);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(number_);
    layout->addWidget(caption);
    tint();
}

void StatBadge::setValue(std::size_t value) {
    number_->setText(QString::number(value));
}

void StatBadge::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        tint();
    }
}

void StatBadge::tint() {
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme_.colors().*color_);
    number_->setPalette(palette);
}

} // namespace fernwick
