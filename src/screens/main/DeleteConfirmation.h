// Asks before a tunnel is deleted.
// Threads: main thread only.
#pragma once

#include "screens/theme/AlertSheet.h"

#include <functional>
#include <string_view>

namespace fernwick {

class DeleteConfirmation final : public AlertSheet {
public:
    // `name` is the tunnel's name as it is stored; `onDelete` is called when the user agrees.
    DeleteConfirmation(const Theme& theme, std::string_view name, std::function<void()> onDelete,
                       QWidget* parent);

    // Asks about a tunnel of another name.
    void setName(std::string_view name);
};

} // namespace fernwick
