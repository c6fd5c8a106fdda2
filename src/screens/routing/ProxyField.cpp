#include "screens/routing/ProxyField.h"

#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QHBoxLayout>

#include <algorithm>

namespace fernwick {

ProxyField::ProxyField(const Theme& theme, const QString& label, QWidget* content, QWidget* parent)
    : QWidget(parent) {
    auto* name = makeCaption(label, theme.font(13), this);
    name->setFixedWidth(std::max(kLabelWidth, name->fontMetrics().horizontalAdvance(label)));
    content->setParent(this);
    content->setAccessibleName(label);
    name->setBuddy(content);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(grid::kSmall);
    row->addWidget(name);
    const bool narrow = content->maximumWidth() < QWIDGETSIZE_MAX;
    row->addWidget(content, narrow ? 0 : 1);
    if (narrow) {
        row->addStretch(1);
    }
}

} // namespace fernwick
