// One entry at the foot of the popover: an icon, and what it opens or does. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QAbstractButton>

namespace fernwick {

class MenuBarFooterButton final : public QAbstractButton {
public:
    // A destructive one is red.
    MenuBarFooterButton(const Theme& theme, Icon icon, const QString& label, bool isDestructive,
                        QWidget* parent);

    [[nodiscard]] bool isDestructive() const { return isDestructive_; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme& theme_;
    Icon icon_;
    bool isDestructive_;
};

} // namespace fernwick
