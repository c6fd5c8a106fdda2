// What stands in place of the sidebar's rows when there are none.
// Threads: main thread only.
#pragma once

#include "screens/theme/Parts.h"

namespace fernwick {

class EmptyListView final : public QWidget {
public:
    EmptyListView(const Theme& theme, QWidget* parent);

    // Whether a search found nothing, or there is nothing to be found.
    void setSearching(bool searching);

private:
    IconView* icon_;
    QLabel* text_;
};

} // namespace fernwick
