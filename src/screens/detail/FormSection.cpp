#include "screens/detail/FormSection.h"

namespace fernwick {

namespace {

constexpr int kIconSize = 16;

} // namespace

FormSection::FormSection(const Theme& theme, const QString& title, Icon icon, QWidget* parent, int padding)
    : QWidget(parent), card_(new Card(theme, this)), title_(new QHBoxLayout), rows_(new QVBoxLayout(card_)) {
    auto* heading = makeLabel(title, theme.font(13, QFont::DemiBold), this);
    heading->setObjectName(QStringLiteral("sectionTitle"));
    title_->setContentsMargins(grid::kTight, 0, grid::kTight, 0);
    title_->setSpacing(grid::kTight + 2);
    title_->addWidget(new IconView(theme, icon, kIconSize, &Palette::secondary, this));
    title_->addWidget(heading);
    title_->addStretch(1); // not by the label, whose text has a direction of its own
    rows_->setContentsMargins(grid::kLarge, padding, grid::kLarge, padding);
    rows_->setSpacing(grid::kMedium);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addLayout(title_);
    layout->addWidget(card_);
}

void FormSection::addRow(QWidget* row) {
    rows_->addWidget(row);
}

void FormSection::addToTitle(QWidget* control) {
    title_->addWidget(control);
}

} // namespace fernwick
