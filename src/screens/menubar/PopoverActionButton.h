// A bordered button in a colour of its own, with a dot in that colour if wanted: "Connect All" and its
// opposite. Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

#include <QAbstractButton>

namespace fernwick {

class PopoverActionButton final : public QAbstractButton {
public:
    PopoverActionButton(const Theme& theme, const QString& text, NamedColor tint, bool hasDot, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int contentWidth() const;

    const Theme& theme_;
    NamedColor tint_;
    bool hasDot_;
};

} // namespace fernwick
