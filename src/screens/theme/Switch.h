// A switch: on or off at once, unlike a check box, which belongs to something that is confirmed later. To
// assistive technology it is a check box. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QCheckBox>

namespace fernwick {

class Switch final : public QCheckBox {
public:
    Switch(const Theme& theme, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& where) const override { return rect().contains(where); }

private:
    const Theme& theme_;
};

} // namespace fernwick
