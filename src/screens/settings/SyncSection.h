// One of the cards of the page of exports, backups and the cloud.
#pragma once

#include "screens/theme/Icons.h"

#include <QString>

class QWidget;

namespace fernwick {

struct SyncSection {
    QString title;
    Icon icon;
    QWidget* content; // what is in the card; the page takes it over
};

} // namespace fernwick
