// One of the buttons that say which tab of the detail view shows, with a red badge for what wants attention.
// To assistive technology the buttons are a group of which one is chosen. Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QAbstractButton>

#include <functional>

namespace fernwick {

class TabButton final : public QAbstractButton {
public:
    // `selected` is called with `index` when the user chooses this tab.
    TabButton(const Theme& theme, const QString& title, Icon icon, int index, std::function<void(int)> selected,
              QWidget* parent);

    // Shows the number; 0 or less shows none.
    void setBadge(int badge);
    [[nodiscard]] int badge() const { return badge_; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QSize badgeSize() const;

    const Theme& theme_;
    Icon icon_;
    int badge_ = 0;
};

} // namespace fernwick
