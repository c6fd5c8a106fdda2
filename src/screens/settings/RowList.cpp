#include "screens/settings/RowList.h"

#include <QListView>

namespace fernwick {

QListView* makeRowList(const QString& objectName, const QString& accessibleName, QWidget* parent) {
    auto* list = new QListView(parent);
    list->setObjectName(objectName);
    list->setAccessibleName(accessibleName);
    list->setFrameShape(QFrame::NoFrame);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setUniformItemSizes(true);
    list->setMouseTracking(true);
    list->viewport()->setAttribute(Qt::WA_Hover);
    return list;
}

} // namespace fernwick
