// The button at the end of the row under the pointer, or of the row that the keyboard is on: it stops the row's
// tunnel, or starts it. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QAbstractButton>

namespace fernwick {

class PopoverRowButton final : public QAbstractButton {
public:
    PopoverRowButton(const Theme& theme, QWidget* parent);

    // Shows what a press does to the tunnel of that name.
    void setTunnel(const QString& name, bool isActive);
    [[nodiscard]] bool stops() const { return stops_; }

    // 0 is invisible, 1 is all there.
    void setShown(double shown);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    bool stops_ = false;
    double shown_ = 1.0;
};

} // namespace fernwick
