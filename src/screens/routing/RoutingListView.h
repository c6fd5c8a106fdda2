// A list of records that can be put in another order by dragging a row, or by Alt and an arrow key. It moves
// nothing itself: it says which row is wanted where. Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "screens/theme/Theme.h"

#include <QListView>

#include <functional>
#include <memory>
#include <optional>

namespace fernwick {

// What the user asks for in the list, of a row by its number from 0. Only `toggle` may be left out.
struct ListGestures {
    std::function<void(int row, QPoint where)> menu; // a menu at that place on the screen
    std::function<void(int row)> edit;
    std::function<void(int row)> remove;
    // The row before the one at `before`, which is the number of rows for the end.
    std::function<void(int row, int before)> move;
    std::function<void(int row)> toggle = nullptr;
};

class RoutingListView final : public QListView {
public:
    RoutingListView(const Theme& theme, platform::Dispatch& dispatch, ListGestures gestures, QWidget* parent);

    void setModel(QAbstractItemModel* model) override;

    // The chosen row, or -1.
    [[nodiscard]] int selectedRow() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    // A row that was pressed, and perhaps is being dragged.
    struct Drag {
        int row = -1;
        int grip = 0;   // how far below its top it was taken
        QPoint pressed; // in the viewport
        QPoint now;
        bool moving = false;
    };

    [[nodiscard]] bool askedByKey(const QKeyEvent& event);
    void openMenu(int row, QPoint where);
    [[nodiscard]] int gapAt(int y) const; // the row before which what is dropped there goes
    void paintDrag(QPainter& painter) const;
    void endDrag();
    void scrollAtEdge();

    const Theme& theme_;
    platform::Dispatch& dispatch_;
    ListGestures gestures_;
    std::optional<Drag> drag_;
    std::unique_ptr<platform::Timer> edgeTimer_; // while a row is dragged
};

} // namespace fernwick
