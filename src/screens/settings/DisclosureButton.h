// A line that unfolds what stands below it.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QAbstractButton>

namespace fernwick {

class DisclosureButton final : public QAbstractButton {
public:
    // It is checked while what it is for is unfolded.
    DisclosureButton(const Theme& theme, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
};

} // namespace fernwick
