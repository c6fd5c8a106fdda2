// What keys do in the lists of the application beyond the toolkit's own answers. Threads: main thread only.
#pragma once

#include <QAbstractItemView>
#include <QKeyEvent>

namespace fernwick {

// Chooses a row of a list in which none is chosen, if the key is one that moves through lists: the row at which
// the keyboard stands, or the first or last one. False when there is nothing to do. The toolkit's own answer
// would pass over the row at which the keyboard stands without it being chosen, or do nothing at all where that
// is the only one.
[[nodiscard]] bool chooseFirst(QAbstractItemView& list, const QKeyEvent& event);

} // namespace fernwick
