// The persisted lists of proxies and rules. Changing them does not route anything anew; callers ask for that.
// Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "platform/UserDefaults.h"
#include "routing/AppRule.h"
#include "routing/ListEdits.h"
#include "routing/ProxyConfig.h"
#include "support/Signal.h"
#include "support/Weak.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace fernwick {

class ProxyRuleStore {
public:
    // The defaults keys that hold the lists.
    static constexpr std::string_view kProxiesKey = "com.fernwick.proxies";
    static constexpr std::string_view kRulesKey = "com.fernwick.rules";

    // Starts with both lists empty and loads them.
    ProxyRuleStore(platform::UserDefaults& defaults, platform::Dispatch& dispatch);
    ProxyRuleStore(const ProxyRuleStore&) = delete;
    ProxyRuleStore& operator=(const ProxyRuleStore&) = delete;

    // The proxies as they are shown, and the rules in the order in which they are evaluated.
    [[nodiscard]] const std::vector<ProxyConfig>& proxies() const { return proxies_; }
    [[nodiscard]] const std::vector<AppRule>& rules() const { return rules_; }

    // The first proxy with that id; null without an id or a match. The pointer is good until the next change.
    [[nodiscard]] const ProxyConfig* proxy(const std::optional<support::Uuid>& forID) const;

    // The rules that are switched on, in their order.
    [[nodiscard]] std::vector<AppRule> enabledRules() const;

    // Reads both keys. A list whose key is missing or cannot be decoded stays as it was, and nobody is told.
    void load();

    // Reads both keys. A list whose key is missing or cannot be decoded becomes empty.
    void reloadNow();

    // Queues `reloadNow` on the main queue; for use after an import.
    void reloadFromDefaults();

    // Writes both lists, each on its own: one that cannot be encoded leaves its key as it was, and nobody is
    // told.
    void save();

    // Each change saves. An update without an element of that id does nothing, not even that.
    void addProxy(ProxyConfig proxy);
    void updateProxy(const ProxyConfig& proxy);
    void addRule(AppRule rule);
    void updateRule(const AppRule& rule);
    void moveProxies(const ListOffsets& fromOffsets, std::size_t toOffset);
    void moveRules(const ListOffsets& fromOffsets, std::size_t toOffset);

    // Takes proxies away, and then the references to them out of the rules, whose action stays. By id, all
    // with that id go.
    void deleteProxy(const support::Uuid& id);
    void deleteProxies(const ListOffsets& atOffsets);

    void deleteRule(const support::Uuid& id);
    void deleteRules(const ListOffsets& atOffsets);

    // Emitted after every change of the list. When a proxy is deleted, the proxies change first.
    support::Signal<> proxiesChanged;
    support::Signal<> rulesChanged;

private:
    void saveProxies();
    void saveRules();
    void clearReferences(const std::vector<support::Uuid>& proxyIDs);

    platform::UserDefaults& defaults_;
    platform::Dispatch& dispatch_;
    std::vector<ProxyConfig> proxies_;
    std::vector<AppRule> rules_;
    support::WeakSource<ProxyRuleStore> self_{*this};
};

} // namespace fernwick
