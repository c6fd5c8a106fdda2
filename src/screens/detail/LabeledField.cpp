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
    : QWidget(parent), name_(makeCaption(label, theme.font(13), this)) {
    content->setParent(this);
    auto* named = control != nullptr ? control : content;
    named->setAccessibleName(label);
    name_->setBuddy(named);
    if (named->parentWidget() != this) {
        // Assistive technology looks for the label of a menu only beside it.
        auto* aloud = new QLabel(label, named->parentWidget());
        aloud->setBuddy(named);
        aloud->hide();
    }
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(grid::kMedium);
    if (caption.isEmpty()) {
        name_->setFixedSize(labelWidth(*name_), lineHeight(*name_));
        row->addWidget(name_, 0, Qt::AlignTop);
        const bool narrow = content->maximumWidth() < QWIDGETSIZE_MAX;
        row->addWidget(content, narrow ? 0 : 1);
        row->addStretch(narrow ? 1 : 0);
        return;
    }
    name_->setForegroundRole(QPalette::WindowText); // the caption is what stands back
    name_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto* help = makeCaption(caption, theme.font(11), this);
    help->setWordWrap(true);
    named->setAccessibleDescription(caption);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(2);
    lines->addWidget(name_);
    lines->addWidget(help);
    row->addLayout(lines, 1);
    row->addWidget(content, 0, Qt::AlignVCenter);
}

} // namespace fernwick
