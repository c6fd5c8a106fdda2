#include "screens/theme/ListKeys.h"

#include <QItemSelectionModel>

#include <algorithm>

namespace fernwick {

bool chooseFirst(QAbstractItemView& list, const QKeyEvent& event) {
    const auto* model = list.model();
    const int rows = model->rowCount();
    const bool plain = (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (rows == 0 || !plain || list.selectionModel()->hasSelection()) {
        return false;
    }
    int row = 0;
    switch (event.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        row = std::max(list.currentIndex().row(), 0);
        break;
    case Qt::Key_Home:
        break;
    case Qt::Key_End:
        row = rows - 1;
        break;
    default:
        return false;
    }
    list.setCurrentIndex(model->index(row, 0));
    return true;
}

} // namespace fernwick
