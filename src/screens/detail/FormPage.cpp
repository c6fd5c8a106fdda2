#include "screens/detail/FormPage.h"

#include "screens/theme/Grid.h"

namespace fernwick {

namespace {

constexpr int kWidest = 760;

} // namespace

FormPage::FormPage(const Theme& theme, QWidget* parent, Room room)
    : QScrollArea(parent), theme_(theme), column_(new QWidget), sections_(new QVBoxLayout(column_)) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // nothing is drawn of it while all fits
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    viewport()->setAutoFillBackground(false);
    sections_->setContentsMargins(0, 0, 0,
                                  room.between); // a layout puts no spacing before the stretch at its end
    sections_->setSpacing(room.between);
    sections_->addStretch();
    column_->setMaximumWidth(kWidest);
    auto* ground = new QWidget;
    auto* centre = new QHBoxLayout(ground);
    // The scroll bar stands in the margin, so that cards line up with what is above the page.
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    centre->setContentsMargins(grid::kLarge, room.above, grid::kLarge - bar, 0);
    centre->addStretch(1);
    centre->addWidget(column_, 1000);
    centre->addStretch(1);
    setWidget(ground);
    ground->setAutoFillBackground(false); // the area has just given it a ground
}

FormSection* FormPage::addSection(const QString& title, Icon icon, int padding) {
    auto* section = new FormSection(theme_, title, icon, column_, padding);
    sections_->insertWidget(sections_->count() - 1, section);
    return section;
}

} // namespace fernwick
