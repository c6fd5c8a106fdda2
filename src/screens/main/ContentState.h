// What the main window remembers while it lives; none of it is stored.
#pragma once

#include "catalogue/Tunnel.h"
#include "catalogue/TunnelTag.h"

#include <optional>
#include <string>

namespace fernwick {

enum class ColumnVisibility { all, detailOnly };

struct ContentState {
    std::optional<support::Uuid> selectedTunnelID; // shown in the detail column; may name a tunnel that is gone
    std::string searchText;
    std::optional<TunnelTag> selectedTag; // a copy of the tag as it was when it was chosen
    bool showingAddSheet = false;
    bool showingDeleteAlert = false;
    std::optional<Tunnel> tunnelToDelete; // what the confirmation speaks of
    ColumnVisibility columnVisibility = ColumnVisibility::all;
};

} // namespace fernwick
