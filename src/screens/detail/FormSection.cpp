#include "screens/detail/FormSection.h"

#include "screens/theme/Grid.h"

namespace fernwick {

namespace {

constexpr int kIconSize = 16;

} // namespace

FormSection::FormSection(const Theme& theme, const QString& title, Icon icon, QWidget* parent)
    : QWidget(parent), card_(new Card(theme, this)), rows_(new QVBoxLayout(card_)) {
    auto* heading = makeLabel(title, theme.font(13, QFont::DemiBold), this);
    heading->setObjectName(QStringLiteral("sectionTitle"));
    auto* line = new QHBoxLayout;
    line->setContentsMargins(grid::kTight, 0, grid::kTight, 0);
    line->setSpacing(grid::kTight + 2);
    line->addWidget(new IconView(theme, icon, kIconSize, &Palette::secondary, this));
    line->addWidget(heading, 1);
    rows_->setContentsMargins(grid::kLarge, grid::kLarge, grid::kLarge, grid::kLarge);
    rows_->setSpacing(grid::kMedium);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addLayout(line);
    layout->addWidget(card_);
}

void FormSection::addRow(QWidget* row) {
    rows_->addWidget(row);
}

} // namespace fernwick
