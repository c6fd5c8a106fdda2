#include "screens/detail/KeepAliveSlider.h"

#include <QScopedValueRollback>
#include <QWheelEvent>

#include <algorithm>

namespace fernwick {

namespace {

int nearestStep(std::int64_t seconds) {
    const auto inside = std::clamp<std::int64_t>(seconds, KeepAliveSlider::kLeast, KeepAliveSlider::kMost);
    return static_cast<int>((inside + KeepAliveSlider::kStep / 2) / KeepAliveSlider::kStep) *
           KeepAliveSlider::kStep;
}

} // namespace

KeepAliveSlider::KeepAliveSlider(std::function<void(int)> moved, QWidget* parent)
    : QSlider(Qt::Horizontal, parent), moved_(std::move(moved)) {
    setRange(kLeast, kMost);
    setSingleStep(kStep);
    setPageStep(3 * kStep);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QSlider::valueChanged, this, [this](int seconds) {
        if (showing_) {
            return;
        }
        const int step = nearestStep(seconds);
        if (step != seconds) {
            showStored(step); // the pointer stops anywhere
        }
        moved_(step);
    });
}

void KeepAliveSlider::showStored(std::int64_t seconds) {
    const QScopedValueRollback guard(showing_, true);
    setValue(nearestStep(seconds));
}

void KeepAliveSlider::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace fernwick
