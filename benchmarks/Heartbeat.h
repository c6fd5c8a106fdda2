// How long the main thread answered nobody.
#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>

namespace fernwick {

// The longest time in which the main thread answered nobody, in milliseconds.
class Heartbeat {
public:
    Heartbeat() {
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            longest_ = std::max(longest_, static_cast<double>(sinceBeat_.nsecsElapsed()) / 1e6);
            sinceBeat_.restart();
        });
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.start(1);
        sinceBeat_.start();
    }
    [[nodiscard]] double longest() const { return longest_; }

private:
    QTimer timer_;
    QElapsedTimer sinceBeat_;
    double longest_ = 0;
};

} // namespace fernwick
