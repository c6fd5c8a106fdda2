// A moment told by how far it is from now, as in "Last synced: 5 min. ago". It follows the time while it is on
// the screen, and wakes nobody while it is not. Threads: main thread only.
#pragma once

#include "platform/Clock.h"
#include "platform/Dispatch.h"
#include "screens/theme/Theme.h"
#include "support/RelativeDate.h"

#include <QLabel>

#include <memory>
#include <optional>

namespace fernwick {

class RelativeDateLabel final : public QLabel {
public:
    // `before` stands in front of the date. Clock and dispatch outlive the label.
    RelativeDateLabel(const Theme& theme, const platform::Clock& clock, platform::Dispatch& dispatch,
                      QString before, QWidget* parent);

    // Shows a date; without one the label hides.
    void showDate(std::optional<support::Date> date);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();

    const platform::Clock& clock_;
    platform::Dispatch& dispatch_;
    QString before_;
    std::optional<support::Date> date_;
    support::RelativeDateFormatter relative_;
    std::unique_ptr<platform::Timer> timer_; // while it is on the screen
};

} // namespace fernwick
