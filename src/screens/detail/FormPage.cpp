#include "screens/detail/FormPage.h"

#include "screens/theme/Grid.h"

namespace fernwick {

namespace {

constexpr int kWidest = 760;
constexpr int kBottom = 30; // under each section

} // namespace

FormPage::FormPage(const Theme& theme, QWidget* parent)
    : QScrollArea(parent), theme_(theme), column_(new QWidget), sections_(new QVBoxLayout(column_)) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    viewport()->setAutoFillBackground(false);
    sections_->setContentsMargins(0, 0, 0, kBottom);
    sections_->setSpacing(kBottom);
    sections_->setAlignment(Qt::AlignTop);
    column_->setMaximumWidth(kWidest);
    auto* ground = new QWidget;
    auto* centre = new QHBoxLayout(ground);
    centre->setContentsMargins(grid::kLarge, grid::kTight, grid::kLarge, 0);
    centre->addStretch(1);
    centre->addWidget(column_, 1000);
    centre->addStretch(1);
    setWidget(ground);
    ground->setAutoFillBackground(false); // the area has just given it a ground
}

FormSection* FormPage::addSection(const QString& title, Icon icon) {
    auto* section = new FormSection(theme_, title, icon, column_);
    sections_->addWidget(section);
    return section;
}

} // namespace fernwick
