// A bar for work of which nobody knows how much is left: a piece of it travels from end to end for as long as
// it is on the screen. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QProgressBar>

namespace fernwick {

class BusyBar final : public QProgressBar {
public:
    BusyBar(const Theme& theme, QWidget* parent);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    QElapsedTimer shown_;
    QBasicTimer frames_;
};

} // namespace fernwick
