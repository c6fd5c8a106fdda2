// What the detail column shows while no tunnel is chosen.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QWidget>

#include <functional>

namespace fernwick {

class EmptyDetailView final : public QWidget {
public:
    EmptyDetailView(const Theme& theme, std::function<void()> onAdd, QWidget* parent);
};

} // namespace fernwick
