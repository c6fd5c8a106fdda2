#include "screens/detail/TagPicker.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/FlowLayout.h"
#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"
#include "screens/theme/TagColors.h"

#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kPadding = 12;
constexpr int kLongest = 200;
constexpr int kChipHeight = 26;
constexpr int kSpacing = 6;
constexpr double kGroundOpacity = 0.15;
constexpr double kHoverOpacity = 0.25;

} // namespace

TagChip::TagChip(const Theme& theme, const TunnelTag& tag, std::function<void()> toggled, QWidget* parent)
    : QAbstractButton(parent), theme_(theme), colorHex_(tag.colorHex) {
    setText(displayLine(tag.name));
    setAccessibleName(text());
    setObjectName(QStringLiteral("tagPickerChip:") + text());
    setFont(theme.font(12, QFont::Medium));
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::toggled, this, std::move(toggled));
}

void TagChip::setChosen(bool chosen) {
    const QSignalBlocker quiet(this);
    setChecked(chosen);
}

QSize TagChip::sizeHint() const {
    const int width = std::min(fontMetrics().horizontalAdvance(text()), kLongest);
    return {width + 2 * kPadding, std::max(fontMetrics().height() + grid::kSmall, kChipHeight)};
}

void TagChip::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    const QColor color = tagColor(colorHex_, colors);
    QPainter painter(this);
    const QRectF area(rect());
    const double radius = area.height() / 2;
    const double opacity = isChecked() ? 1.0 : (underMouse() ? kHoverOpacity : kGroundOpacity);
    stylepaint::roundedBox(painter, area, withOpacity(color, opacity), Qt::transparent, radius);
    if (isChecked() && (isDown() || underMouse())) {
        stylepaint::roundedBox(painter, area, isDown() ? colors.pressed : colors.hover, Qt::transparent,
                               radius);
    }
    if (hasFocus()) {
        stylepaint::focusRing(painter, area, isChecked() ? colors.text : colors.accent, radius);
    }
    painter.setPen(isChecked() ? colors.onAccent : colors.text);
    const QRect room = rect().adjusted(kPadding, 0, -kPadding, 0);
    painter.drawText(room, Qt::AlignCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, room.width() + 1));
}

TagPicker::TagPicker(const Theme& theme, TagManager& tags, std::function<void(const support::Uuid&)> toggled,
                     QWidget* parent)
    : QWidget(parent), theme_(theme), tags_(tags), toggled_(std::move(toggled)) {
    setObjectName(QStringLiteral("tagPicker"));
    auto* flow = new FlowLayout(this, kSpacing);
    // A line of chips is as high as the other rows of a form, so that the label stands beside its middle.
    constexpr int kAround = (grid::kControlHeight - kChipHeight) / 2;
    flow->setContentsMargins(0, kAround, 0, kAround);
    rebuild();
    tagsChanged_ = tags.changed.connect([this] { rebuild(); });
}

void TagPicker::rebuild() {
    for (const auto& [id, chip] : chips_) {
        chip->hide();
        chip->deleteLater(); // a chip may be the one whose click brought us here
        layout()->removeWidget(chip);
    }
    chips_.clear();
    for (const TunnelTag& tag : tags_.tags()) {
        auto* chip = new TagChip(theme_, tag, [this, id = tag.id] { toggled_(id); }, this);
        layout()->addWidget(chip);
        chips_.emplace_back(tag.id, chip);
    }
    showSelected(selectedTagIDs_);
}

void TagPicker::showSelected(const std::vector<support::Uuid>& selectedTagIDs) {
    selectedTagIDs_ = selectedTagIDs;
    for (const auto& [id, chip] : chips_) {
        chip->setChosen(std::ranges::find(selectedTagIDs, id) != selectedTagIDs.end());
    }
}

void toggleTag(std::vector<support::Uuid>& selectedTagIDs, const support::Uuid& tagID) {
    if (std::erase(selectedTagIDs, tagID) == 0) {
        selectedTagIDs.push_back(tagID);
    }
}

} // namespace fernwick
