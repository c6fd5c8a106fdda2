#include "screens/settings/DetailRow.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"

#include <QHBoxLayout>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kLabelWidth = 48;
constexpr qsizetype kLongest = 4096;

} // namespace

DetailRow::DetailRow(const Theme& theme, const QString& label, Kind kind, QWidget* parent)
    : QWidget(parent), value_(new ElidedLabel(this)) {
    auto* name = makeCaption(label, theme.font(12), this);
    name->setMinimumWidth(std::max(kLabelWidth, name->fontMetrics().horizontalAdvance(label)));
    name->setBuddy(value_);
    value_->setObjectName(QStringLiteral("value:") + label);
    value_->setFont(theme.font(12));
    if (kind == Kind::path) {
        value_->setLayoutDirection(Qt::LeftToRight);
        value_->setElideMode(Qt::ElideMiddle);
    }
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(grid::kSmall);
    row->addWidget(name);
    row->addWidget(value_, 1);
}

void DetailRow::setValue(std::string_view value) {
    const QString text = displayLine(value, kLongest);
    value_->setText(text);
    setTextToolTip(*value_, text);
}

} // namespace fernwick
