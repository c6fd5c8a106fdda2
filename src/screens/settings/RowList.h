// The list of rows of one height that the settings' pages have: one can be chosen, and what is drawn follows
// the pointer. Threads: main thread only.
#pragma once

#include <QString>

class QListView;
class QWidget;

namespace fernwick {

// A new list, a child of `parent`, without a frame of its own.
[[nodiscard]] QListView* makeRowList(const QString& objectName, const QString& accessibleName, QWidget* parent);

} // namespace fernwick
