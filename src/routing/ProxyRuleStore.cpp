#include "routing/ProxyRuleStore.h"

#include "catalogue/StoredList.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace fernwick {

ProxyRuleStore::ProxyRuleStore(platform::UserDefaults& defaults, platform::Dispatch& dispatch)
    : defaults_(defaults), dispatch_(dispatch) {
    load();
}

const ProxyConfig* ProxyRuleStore::proxy(const std::optional<support::Uuid>& forID) const {
    const auto found = forID ? std::ranges::find(proxies_, *forID, &ProxyConfig::id) : proxies_.end();
    return found != proxies_.end() ? &*found : nullptr;
}

std::vector<AppRule> ProxyRuleStore::enabledRules() const {
    std::vector<AppRule> enabled;
    std::ranges::copy_if(rules_, std::back_inserter(enabled), &AppRule::isEnabled);
    return enabled;
}

void ProxyRuleStore::load() {
    if (auto stored = readStoredList<ProxyConfig>(defaults_, kProxiesKey)) {
        proxies_ = std::move(*stored);
        proxiesChanged.emit();
    }
    if (auto stored = readStoredList<AppRule>(defaults_, kRulesKey)) {
        rules_ = std::move(*stored);
        rulesChanged.emit();
    }
}

void ProxyRuleStore::reloadNow() {
    proxies_ = readStoredList<ProxyConfig>(defaults_, kProxiesKey).value_or(std::vector<ProxyConfig>{});
    proxiesChanged.emit();
    rules_ = readStoredList<AppRule>(defaults_, kRulesKey).value_or(std::vector<AppRule>{});
    rulesChanged.emit();
}

void ProxyRuleStore::reloadFromDefaults() {
    dispatch_.main([weak = self_.weak()] {
        if (auto* const store = weak.get()) {
            store->reloadNow();
        }
    });
}

void ProxyRuleStore::save() {
    writeStoredList(defaults_, kProxiesKey, proxies_);
    writeStoredList(defaults_, kRulesKey, rules_);
}

void ProxyRuleStore::saveProxies() {
    save();
    proxiesChanged.emit();
}

void ProxyRuleStore::saveRules() {
    save();
    rulesChanged.emit();
}

void ProxyRuleStore::addProxy(ProxyConfig proxy) {
    proxies_.push_back(std::move(proxy));
    saveProxies();
}

void ProxyRuleStore::updateProxy(const ProxyConfig& proxy) {
    const auto found = std::ranges::find(proxies_, proxy.id, &ProxyConfig::id);
    if (found == proxies_.end()) {
        return;
    }
    *found = proxy;
    saveProxies();
}

void ProxyRuleStore::addRule(AppRule rule) {
    rules_.push_back(std::move(rule));
    saveRules();
}

void ProxyRuleStore::updateRule(const AppRule& rule) {
    const auto found = std::ranges::find(rules_, rule.id, &AppRule::id);
    if (found == rules_.end()) {
        return;
    }
    *found = rule;
    saveRules();
}

void ProxyRuleStore::moveProxies(const ListOffsets& fromOffsets, std::size_t toOffset) {
    moveOffsets(proxies_, fromOffsets, toOffset);
    saveProxies();
}

void ProxyRuleStore::moveRules(const ListOffsets& fromOffsets, std::size_t toOffset) {
    moveOffsets(rules_, fromOffsets, toOffset);
    saveRules();
}

void ProxyRuleStore::deleteProxy(const support::Uuid& id) {
    const auto gone = id; // it may lie in the list
    std::erase_if(proxies_, [&](const ProxyConfig& proxy) { return proxy.id == gone; });
    proxiesChanged.emit();
    clearReferences({gone});
    saveRules();
}

void ProxyRuleStore::deleteProxies(const ListOffsets& atOffsets) {
    std::vector<support::Uuid> gone;
    for (const auto& proxy : takeOffsets(proxies_, atOffsets)) {
        gone.push_back(proxy.id);
    }
    proxiesChanged.emit();
    clearReferences(gone);
    saveRules();
}

void ProxyRuleStore::clearReferences(const std::vector<support::Uuid>& proxyIDs) {
    const std::unordered_set<support::Uuid> gone(proxyIDs.begin(), proxyIDs.end());
    for (auto& rule : rules_) {
        if (rule.proxyID && gone.contains(*rule.proxyID)) {
            rule.proxyID.reset();
        }
    }
}

void ProxyRuleStore::deleteRule(const support::Uuid& id) {
    const auto gone = id; // it may lie in the list
    std::erase_if(rules_, [&](const AppRule& rule) { return rule.id == gone; });
    saveRules();
}

void ProxyRuleStore::deleteRules(const ListOffsets& atOffsets) {
    takeOffsets(rules_, atOffsets);
    saveRules();
}

} // namespace fernwick
