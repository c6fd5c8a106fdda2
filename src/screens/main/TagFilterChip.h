// One choice of the sidebar's tag strip: a capsule with a name, filled while it is chosen.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QAbstractButton>

#include <functional>

namespace fernwick {

class TagFilterChip final : public QAbstractButton {
public:
    TagFilterChip(const Theme& theme, const QString& label, bool isSelected, const QColor& color,
                  std::function<void()> action, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QColor color() const { return color_; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override {} // whether it is chosen is decided by the sidebar

private:
    const Theme& theme_;
    QColor color_;
};

} // namespace fernwick
