#include "screens/main/TagStrip.h"

#include "screens/main/TagFilterChip.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/TagColors.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QWheelEvent>

namespace fernwick {

namespace {

constexpr int kSpacing = 6;
constexpr int kSidePadding = 12;
constexpr int kTopPadding = 6;

} // namespace

TagStrip::TagStrip(const Theme& theme, Choose choose, QWidget& before, QWidget* parent)
    : QScrollArea(parent), theme_(theme), choose_(std::move(choose)), before_(before) {
    setObjectName(QStringLiteral("tagStrip"));
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    viewport()->setAutoFillBackground(false);
    rebuild();
}

void TagStrip::setTags(const std::vector<TunnelTag>& tags, const std::optional<TunnelTag>& selected) {
    if (tags == tags_ && selected == selected_) {
        return;
    }
    tags_ = tags;
    selected_ = selected;
    rebuild();
}

void TagStrip::rebuild() {
    const QWidget* const focused = focusWidget();
    const QString focusedName = focused != nullptr && focused->hasFocus() ? focused->objectName() : QString();
    const int scrolled = horizontalScrollBar()->value();
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(kSidePadding, kTopPadding, kSidePadding, kTopPadding);
    layout->setSpacing(kSpacing);
    if (auto* old = takeWidget()) {
        old->hide();
        old->deleteLater(); // a chip of it may be the one whose click brought us here
    }
    setWidget(row);
    row->setAutoFillBackground(false); // the area has just given it a ground
    addChip(QStringLiteral("All"), QStringLiteral("All"), !selected_, theme_.colors().blue, std::nullopt);
    for (const TunnelTag& tag : tags_) {
        const bool isSelected = selected_ && selected_->id == tag.id;
        const QString label = displayLine(tag.name);
        addChip(label, label, isSelected, tagColor(tag.colorHex, theme_.colors()),
                isSelected ? std::nullopt : std::optional(tag));
    }
    layout->addStretch();
    orderChips();
    row->adjustSize();
    setFixedHeight(row->sizeHint().height());
    horizontalScrollBar()->setValue(scrolled);
    if (auto* chip = focusedName.isEmpty() ? nullptr : row->findChild<QWidget*>(focusedName)) {
        chip->setFocus();
    }
}

// Otherwise Tab would come to them behind all that was made before them.
void TagStrip::orderChips() {
    QWidget* before = &before_;
    for (auto* chip : widget()->findChildren<TagFilterChip*>()) {
        setTabOrder(before, chip);
        before = chip;
    }
}

void TagStrip::addChip(const QString& label, const QString& name, bool isSelected, const QColor& color,
                       const std::optional<TunnelTag>& choice) {
    auto* chip =
        new TagFilterChip(theme_, label, isSelected, color, [this, choice] { choose_(choice); }, widget());
    chip->setObjectName(QStringLiteral("tagChip:") + name);
    chip->installEventFilter(this);
    widget()->layout()->addWidget(chip);
}

void TagStrip::wheelEvent(QWheelEvent* event) {
    const QPoint delta = event->pixelDelta().isNull() ? event->angleDelta() / 2 : event->pixelDelta();
    const int step = delta.x() != 0 ? delta.x() : delta.y();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - step);
    event->accept();
}

bool TagStrip::eventFilter(QObject* watched, QEvent* event) {
    if (auto* chip = qobject_cast<QWidget*>(watched); chip != nullptr && event->type() == QEvent::FocusIn) {
        ensureWidgetVisible(chip, kSidePadding, 0);
    }
    return QScrollArea::eventFilter(watched, event);
}

} // namespace fernwick
