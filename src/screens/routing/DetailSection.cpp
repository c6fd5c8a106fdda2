#include "screens/routing/DetailSection.h"

#include "screens/theme/Grid.h"

#include <QEvent>
#include <QHBoxLayout>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kKeyWidth = 84;
constexpr int kIconSize = 16;

} // namespace

DetailSection::DetailSection(const Theme& theme, const QString& title, QWidget* parent)
    : QWidget(parent), card_(new Card(theme, this)), rows_(new QVBoxLayout(card_)) {
    setAccessibleName(title);
    rows_->setContentsMargins(grid::kMedium + 2, grid::kMedium, grid::kMedium + 2, grid::kMedium);
    rows_->setSpacing(grid::kSmall + 2);
    card_->hide(); // until there is a row
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight + 2);
    if (!title.isEmpty()) {
        auto* heading = makeLabel(title, theme.font(12, QFont::DemiBold), this);
        heading->setObjectName(QStringLiteral("sectionTitle"));
        heading->setForegroundRole(QPalette::PlaceholderText);
        heading->setContentsMargins(grid::kTight, 0, grid::kTight, 0);
        layout->addWidget(heading);
    }
    layout->addWidget(card_);
}

void DetailSection::addRow(QWidget* row) {
    rows_->addWidget(row);
    card_->show();
}

DetailKV::DetailKV(const Theme& theme, const QString& key, const QString& value, QWidget* parent)
    : QWidget(parent), value_(new ElidedLabel(this)) {
    auto* name = makeCaption(key, theme.font(12), this);
    name->setMinimumWidth(std::max(kKeyWidth, name->fontMetrics().horizontalAdvance(key)));
    value_->setFont(theme.font(12));
    value_->setText(value);
    value_->setObjectName(QStringLiteral("value:%1").arg(key));
    name->setBuddy(value_);
    setTextToolTip(*value_, value);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kMedium);
    layout->addWidget(name);
    layout->addWidget(value_, 1);
}

DetailLine::DetailLine(const Theme& theme, Icon icon, NamedColor color, const QString& text, QWidget* parent)
    : QWidget(parent), theme_(theme), color_(color), text_(new ElidedLabel(this)) {
    text_->setFont(theme.font(13, QFont::Medium));
    text_->setText(text);
    text_->setObjectName(QStringLiteral("lineText"));
    text_->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addWidget(new IconView(theme, icon, kIconSize, color, this));
    layout->addWidget(text_);
    layout->addStretch();
    tint();
}

void DetailLine::addCaption(const QString& text) {
    text_->setMinimumWidth(text_->sizeHint().width()); // it is the caption that gives way
    auto* caption = new ElidedLabel(this);
    caption->setFont(theme_.font(13));
    caption->setForegroundRole(QPalette::PlaceholderText);
    caption->setText(text);
    caption->setObjectName(QStringLiteral("lineCaption"));
    caption->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    auto* row = static_cast<QHBoxLayout*>(layout());
    row->insertWidget(row->count() - 1, caption);
}

void DetailLine::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        tint();
    }
}

void DetailLine::tint() {
    QPalette palette;
    palette.setColor(QPalette::WindowText, theme_.colors().*color_);
    text_->setPalette(palette);
}

} // namespace fernwick
