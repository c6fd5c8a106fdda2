// The list of tunnels in the sidebar: single selection, a context menu, and a key to delete.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QListView>

#include <functional>
#include <vector>

namespace fernwick {

class TunnelListView final : public QListView {
public:
    TunnelListView(const Theme& theme, QWidget* parent);

    // Called with the chosen rows when the delete key is pressed.
    std::function<void(std::vector<int>)> onDelete;

    // Called with a row and a place on the screen where its menu is to open.
    std::function<void(int, QPoint)> onMenu;

    // A change of status alone repaints its row and leaves the layout as it is.
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                     const QList<int>& roles) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
};

} // namespace fernwick
