// One routing rule: which traffic, and what becomes of it.
#pragma once

#include "support/Record.h"
#include "support/Uuid.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace fernwick {

// What becomes of the traffic. The raw text is both the stored value and the label on screen.
enum class RuleAction { direct, proxy, block, tunnel };

constexpr auto rawTexts(RuleAction) {
    return std::array{
        support::rawText(RuleAction::direct, "Direct"), support::rawText(RuleAction::proxy, "Proxy"),
        support::rawText(RuleAction::block, "Block"), support::rawText(RuleAction::tunnel, "Tunnel")};
}

// The three lists hold texts as typed; an element may be empty, and is then passed over by whoever reads it.
struct AppRule {
    support::Uuid id;
    std::string name = "New Rule";
    bool isEnabled = true;
    std::vector<std::string> applications; // names, bundle identifiers and IP forms, see AppEntry
    std::vector<std::string> targetHosts;  // host patterns, IPs, ranges, CIDRs
    std::vector<std::string> targetPorts;  // one port, or "a-b"
    RuleAction action = RuleAction::direct;
    std::optional<support::Uuid> proxyID;  // used by the action `proxy`
    std::optional<support::Uuid> tunnelID; // used by the action `tunnel`

    bool operator==(const AppRule&) const = default;

    // A new rule: the defaults, and an id of its own.
    [[nodiscard]] static AppRule create();

    // Replaces the list by what stands between the semicolons, trimmed of blanks. Nothing between two of them
    // gives no element; blanks give an empty one.
    void setTargetHosts(std::string_view fromText);
    void setTargetPorts(std::string_view fromText);

    static constexpr auto fields() {
        using support::field;
        return std::tuple{field("id", &AppRule::id),
                          field("name", &AppRule::name),
                          field("isEnabled", &AppRule::isEnabled),
                          field("applications", &AppRule::applications),
                          field("targetHosts", &AppRule::targetHosts),
                          field("targetPorts", &AppRule::targetPorts),
                          field("action", &AppRule::action),
                          field("proxyID", &AppRule::proxyID),
                          field("tunnelID", &AppRule::tunnelID)};
    }
};

} // namespace fernwick
