#include "screens/theme/SegmentedControl.h"

#include "screens/theme/Grid.h"
#include "screens/theme/StylePaint.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>
#include <QScopedValueRollback>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kHeight = 26;
constexpr int kPadding = 12;
constexpr int kInset = 2; // between the track and what lies in it
constexpr double kRadius = grid::kControlRadius - kInset;

class Segment final : public QRadioButton {
public:
    Segment(const Theme& theme, const QString& text, QWidget* parent)
        : QRadioButton(text, parent), theme_(theme) {
        setFont(theme.font(12, QFont::Medium));
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    }

    [[nodiscard]] QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 2 * kPadding,
                std::max(fontMetrics().height() + grid::kSmall, kHeight)};
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] bool hitButton(const QPoint& where) const override { return rect().contains(where); }

    void paintEvent(QPaintEvent* /*event*/) override {
        const Palette& colors = theme_.colors();
        QPainter painter(this);
        const QRectF area(rect());
        if (isChecked()) {
            stylepaint::roundedBox(painter, area, colors.control, colors.border, kRadius);
        } else if (underMouse()) {
            stylepaint::roundedBox(painter, area, isDown() ? colors.pressed : colors.hover, Qt::transparent,
                                   kRadius);
        }
        if (hasFocus()) {
            stylepaint::focusRing(painter, area, colors.accent, kRadius);
        }
        painter.setPen(isChecked() ? colors.text : colors.secondary);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
    }

private:
    const Theme& theme_;
};

} // namespace

SegmentedControl::SegmentedControl(const Theme& theme, std::function<void(int)> chosen, QWidget* parent)
    : QWidget(parent), theme_(theme), chosen_(std::move(chosen)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(kInset, kInset, kInset, kInset);
    layout->setSpacing(kInset);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void SegmentedControl::addSegment(const QString& text, const QString& objectName) {
    auto* segment = new Segment(theme_, text, this);
    segment->setObjectName(objectName);
    segment->setFocusPolicy(Qt::ClickFocus);
    const auto number = static_cast<int>(segments_.size());
    connect(segment, &QRadioButton::toggled, this, [this, segment, number](bool on) {
        segment->setFocusPolicy(on ? Qt::StrongFocus : Qt::ClickFocus); // arrow keys lead to the others
        if (on && !showing_) {
            chosen_(number);
        }
    });
    segments_.push_back(segment);
    layout()->addWidget(segment);
}

void SegmentedControl::showChosen(int segment) {
    const QScopedValueRollback guard(showing_, true);
    segments_.at(static_cast<std::size_t>(segment))->setChecked(true);
}

void SegmentedControl::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    stylepaint::roundedBox(painter, QRectF(rect()), theme_.colors().pressed, Qt::transparent,
                           grid::kControlRadius);
}

} // namespace fernwick
