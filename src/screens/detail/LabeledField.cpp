#include "screens/detail/LabeledField.h"

#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QHBoxLayout>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kLabelWidth = 108;

// As high as a field, so that the label stands beside the first line of whatever is in the row.
int lineHeight(const QLabel& label) {
    return std::max(label.fontMetrics().height() + grid::kSmall, grid::kControlHeight);
}

int labelWidth(const QLabel& label) {
    return std::max(label.fontMetrics().horizontalAdvance(QStringLiteral("Keep-Alive (sec)")), kLabelWidth);
}

} // namespace

LabeledField::LabeledField(const Theme& theme, const QString& label, QWidget* content, QWidget* parent,
                           QWidget* control, const QString& caption)
    : QWidget(parent) {
    content->setParent(this);
    auto* named = control != nullptr ? control : content;
    named->setAccessibleName(label);
    auto* name = makeCaption(label, theme.font(13), this);
    name->setBuddy(named);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(grid::kMedium);
    if (caption.isEmpty()) {
        name->setFixedSize(labelWidth(*name), lineHeight(*name));
        row->addWidget(name, 0, Qt::AlignTop);
        row->addWidget(content, 1);
        return;
    }
    name->setForegroundRole(QPalette::WindowText);
    auto* help = makeCaption(caption, theme.font(11), this);
    help->setWordWrap(true);
    named->setAccessibleDescription(caption);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(2);
    lines->addWidget(name);
    lines->addWidget(help);
    row->addLayout(lines, 1);
    row->addWidget(content, 0, Qt::AlignVCenter);
}

} // namespace fernwick
