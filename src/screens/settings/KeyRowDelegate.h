// Draws the rows of the table of identity keys: a key, its name with a mark under it where the file reads as
// encrypted, and its path. Threads: main thread only.
#pragma once

#include "screens/settings/KeyTableModel.h"
#include "screens/theme/Theme.h"

#include <QStyledItemDelegate>

class QTableView;

namespace fernwick {

class KeyRowDelegate final : public QStyledItemDelegate {
public:
    KeyRowDelegate(const Theme& theme, const KeyTableModel& model, QTableView& table);

    [[nodiscard]] int rowHeight() const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintGround(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    void paintName(QPainter& painter, QRect area, const QModelIndex& index) const;
    void paintMark(QPainter& painter, const QRect& area) const;

    const Theme& theme_;
    const KeyTableModel& model_;
    QTableView& table_;
    QFont nameFont_;
    QFont smallFont_;
};

} // namespace fernwick
