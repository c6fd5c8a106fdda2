// A named colour that tunnels refer to by id.
#pragma once

#include "support/Record.h"
#include "support/Uuid.h"

#include <string>
#include <tuple>

namespace fernwick {

struct TunnelTag {
    support::Uuid id;
    std::string name;
    std::string colorHex; // e.g. "#FF453A"

    bool operator==(const TunnelTag&) const = default;

    static constexpr auto fields() {
        using support::field;
        return std::tuple{field("id", &TunnelTag::id), field("name", &TunnelTag::name),
                          field("colorHex", &TunnelTag::colorHex)};
    }
};

} // namespace fernwick
