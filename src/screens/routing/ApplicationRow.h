// Draws an application in the picker's list: its icon, its name, and under it the value that a rule gets.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QStyledItemDelegate>

namespace fernwick {

class ApplicationRow final : public QStyledItemDelegate {
public:
    ApplicationRow(const Theme& theme, QObject* parent);

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    const Theme& theme_;
    QFont nameFont_;
    QFont valueFont_;
};

} // namespace fernwick
