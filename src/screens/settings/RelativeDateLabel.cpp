#include "screens/settings/RelativeDateLabel.h"

#include <QHideEvent>
#include <QShowEvent>

#include <cmath>
#include <utility>

namespace fernwick {

namespace {

constexpr double kMinute = 60.0;
constexpr double kHour = 60 * kMinute;

// How long a text of that age stays true, in milliseconds. Seconds pass in steps, and days are looked at by the
// hour: a wake of the machine is worth more than a word that is exact.
platform::Duration untilStale(double age) {
    constexpr platform::Duration kStep{5000};
    constexpr double kMilliseconds = 1000.0;
    if (!(age >= kMinute)) {
        return kStep;
    }
    const double unit = age < kHour ? kMinute : kHour;
    return platform::Duration(std::llround((unit - std::fmod(age, unit)) * kMilliseconds) + 1);
}

} // namespace

RelativeDateLabel::RelativeDateLabel(const Theme& theme, const platform::Clock& clock,
                                     platform::Dispatch& dispatch, QString before, QWidget* parent)
    : QLabel(parent), clock_(clock), dispatch_(dispatch), before_(std::move(before)) {
    setTextFormat(Qt::PlainText);
    setFont(theme.font(12));
    setForegroundRole(QPalette::PlaceholderText);
    hide();
}

void RelativeDateLabel::showDate(std::optional<support::Date> date) {
    date_ = date;
    setVisible(date_.has_value());
    refresh();
}

void RelativeDateLabel::showEvent(QShowEvent* event) {
    QLabel::showEvent(event);
    refresh();
}

void RelativeDateLabel::hideEvent(QHideEvent* event) {
    QLabel::hideEvent(event);
    timer_.reset();
}

void RelativeDateLabel::refresh() {
    timer_.reset();
    if (!date_) {
        return;
    }
    const auto now = clock_.now();
    setText(before_ + QString::fromStdString(relative_.text(*date_, now)));
    if (isVisible()) {
        timer_ = dispatch_.oneShotTimer(untilStale(now.secondsSinceReference - date_->secondsSinceReference),
                                        [this] { refresh(); });
    }
}

} // namespace fernwick
