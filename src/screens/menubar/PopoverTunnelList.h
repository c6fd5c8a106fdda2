// The list of tunnels in the popover. One row at a time is lit: the one under the pointer, or the one that the
// keyboard came to last; that row has the button that starts or stops its tunnel, and Return presses it.
// Threads: main thread only.
#pragma once

#include "screens/menubar/PopoverTunnelModel.h"
#include "screens/theme/Theme.h"

#include <QListView>
#include <QVariantAnimation>

#include <functional>

namespace fernwick {

class PopoverRowButton;
class PopoverTunnelRow;

class PopoverTunnelList final : public QListView {
public:
    static constexpr int kHeightLimit = 360;
    static constexpr int kFadeTime = 100; // milliseconds

    // The theme and the model outlive the list; the parent is a widget that the list stays in.
    PopoverTunnelList(const Theme& theme, PopoverTunnelModel& model, QWidget* parent);

    // Called with the id of the tunnel whose button was pressed.
    std::function<void(const support::Uuid&)> onToggle;

    // The height of all rows, but not above the limit.
    [[nodiscard]] int wantedHeight() const;

    // The row that is lit, or -1.
    [[nodiscard]] int litRow() const { return lit_; }

    // No row is lit, none is current, and the list begins at its top.
    void reset() override;

    // A change of status alone repaints its row and leaves the layout as it is.
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                     const QList<int>& roles) override;

protected:
    bool viewportEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void scrollContentsBy(int dx, int dy) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void light(int row);
    void lightUnderPointer();
    void placeButton();
    void fade();
    void repaintRow(int row);
    [[nodiscard]] double highlight(int row) const;
    void press(int row);

    PopoverTunnelModel& rows_;
    PopoverTunnelRow* delegate_;
    PopoverRowButton* button_; // the parent's: assistive technology sees nothing in a list but its rows
    QVariantAnimation fading_;
    int lit_ = -1;
    int leaving_ = -1;        // the row that was lit before, while it fades
    bool byKeyboard_ = false; // what lit the row
};

} // namespace fernwick
