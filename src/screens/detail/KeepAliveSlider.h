// The slider for the seconds between two signs of life: 10 to 300 in steps of 10.
// Threads: main thread only.
#pragma once

#include <QSlider>

#include <cstdint>
#include <functional>

namespace fernwick {

class KeepAliveSlider final : public QSlider {
public:
    static constexpr int kLeast = 10;
    static constexpr int kMost = 300;
    static constexpr int kStep = 10;

    // `moved` is called with the seconds, always a whole step, that the user moved to.
    KeepAliveSlider(std::function<void(int)> moved, QWidget* parent);

    // Shows the stored seconds, or the step nearest to them, without calling back.
    void showStored(std::int64_t seconds);

protected:
    // A page that is being scrolled must not change what happens to pass under the pointer.
    void wheelEvent(QWheelEvent* event) override;

private:
    std::function<void(int)> moved_;
    bool showing_ = false;
};

} // namespace fernwick
