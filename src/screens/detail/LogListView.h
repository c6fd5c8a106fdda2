// The list of a log's lines. Lines can be chosen and copied.
// Threads: main thread only.
#pragma once

#include "screens/detail/LogListModel.h"
#include "screens/theme/Theme.h"

#include <QListView>
#include <QPropertyAnimation>

namespace fernwick {

class LogRowDelegate;

class LogListView final : public QListView {
public:
    // The model outlives the view.
    LogListView(const Theme& theme, LogListModel& model, QWidget* parent);

    // Brings the last line to the lower edge, gently while the list is on the screen.
    void scrollToEnd();

    // Puts the chosen lines, in their order, on the clipboard.
    void copySelection() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    LogListModel& model_;
    LogRowDelegate* rows_;
    QPropertyAnimation scrolling_;
};

} // namespace fernwick
