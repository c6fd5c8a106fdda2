#include "routing/ProxyRuleStore.h"

#include "support/FakeDispatch.h"
#include "support/FakeUserDefaults.h"
#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

using Names = std::vector<std::string>;

constexpr std::string_view kProxies = "com.fernwick.proxies";
constexpr std::string_view kRules = "com.fernwick.rules";

struct StoreWorld {
    fakes::FakeDispatch dispatch;
    fakes::FakeUserDefaults defaults;

    ProxyRuleStore open() { return {defaults, dispatch}; }

    // The text under the key.
    [[nodiscard]] std::string stored(std::string_view key) const {
        const auto data = defaults.data(key);
        return data ? data->bytes() : "(nothing)";
    }
};

ProxyConfig proxyNamed(std::string name) {
    auto proxy = ProxyConfig::create();
    proxy.name = std::move(name);
    return proxy;
}

AppRule ruleNamed(std::string name, std::optional<support::Uuid> proxyID = std::nullopt) {
    auto rule = AppRule::create();
    rule.name = std::move(name);
    rule.action = proxyID ? RuleAction::proxy : RuleAction::direct;
    rule.proxyID = proxyID;
    return rule;
}

template <class R>
std::string jsonOf(const std::vector<R>& list) {
    return *support::encodeList(list);
}

template <class R>
Names namesOf(const std::vector<R>& list) {
    Names names;
    for (const auto& record : list) {
        names.push_back(record.name);
    }
    return names;
}

TEST(ProxyRuleStore, FirstStartHasTwoEmptyListsAndWritesNothing) {
    StoreWorld world;
    const auto store = world.open();
    EXPECT_TRUE(store.proxies().empty());
    EXPECT_TRUE(store.rules().empty());
    EXPECT_TRUE(world.defaults.changes().empty());
}

TEST(ProxyRuleStore, ListsSurviveInTheirOrderUnderTheirKeys) {
    StoreWorld world;
    const std::vector proxies{proxyNamed("b"), proxyNamed("a")};
    const std::vector rules{ruleNamed("2", proxies[0].id), ruleNamed("1")};
    {
        auto store = world.open();
        store.addProxy(proxies[0]);
        store.addProxy(proxies[1]);
        store.addRule(rules[0]);
        store.addRule(rules[1]);
    }
    EXPECT_EQ(world.stored(kProxies), jsonOf(proxies));
    EXPECT_EQ(world.stored(kRules), jsonOf(rules));
    const auto again = world.open();
    EXPECT_EQ(again.proxies(), proxies);
    EXPECT_EQ(again.rules(), rules);
}

TEST(ProxyRuleStore, EachSaveWritesBothListsProxiesFirst) {
    StoreWorld world;
    auto store = world.open();
    store.addRule(ruleNamed("r"));
    EXPECT_EQ(world.defaults.changes(),
              (std::vector<std::string>{"com.fernwick.proxies", "com.fernwick.rules"}));
    EXPECT_EQ(world.stored(kProxies), "[]");
}

TEST(ProxyRuleStore, BrokenRulesGiveNoRulesAndStayUntilTheNextSave) {
    StoreWorld world;
    world.open().addProxy(proxyNamed("p"));
    world.defaults.setData(kRules, "[{}]");
    auto store = world.open();
    EXPECT_EQ(namesOf(store.proxies()), Names{"p"});
    EXPECT_TRUE(store.rules().empty());
    EXPECT_EQ(world.stored(kRules), "[{}]");
    store.save();
    EXPECT_EQ(world.stored(kRules), "[]");
}

TEST(ProxyRuleStore, BrokenProxiesDoNotStopTheRules) {
    StoreWorld world;
    auto broken = jsonOf(std::vector{proxyNamed("good"), proxyNamed("bad")});
    broken.replace(broken.rfind("SOCKS5"), 6, "SOCKS9");
    world.defaults.setData(kProxies, broken);
    world.defaults.setData(kRules, jsonOf(std::vector{ruleNamed("r")}));
    const auto store = world.open();
    EXPECT_TRUE(store.proxies().empty());
    EXPECT_EQ(namesOf(store.rules()), Names{"r"});
    EXPECT_EQ(world.stored(kProxies), broken);
}

TEST(ProxyRuleStore, LoadKeepsTheListsThatItCannotRead) {
    StoreWorld world;
    auto store = world.open();
    store.addProxy(proxyNamed("p"));
    store.addRule(ruleNamed("r"));
    world.defaults.remove(kProxies);
    world.defaults.setData(kRules, "no list");
    store.load();
    EXPECT_EQ(namesOf(store.proxies()), Names{"p"});
    EXPECT_EQ(namesOf(store.rules()), Names{"r"});
    world.defaults.setData(kRules, jsonOf(std::vector{ruleNamed("s")}));
    store.load();
    EXPECT_EQ(namesOf(store.rules()), Names{"s"});
}

TEST(ProxyRuleStore, ReloadNowEmptiesTheListsThatItCannotRead) {
    StoreWorld world;
    auto store = world.open();
    store.addProxy(proxyNamed("p"));
    store.addRule(ruleNamed("r"));
    world.defaults.setData(kProxies, "[{}]");
    store.reloadNow();
    EXPECT_TRUE(store.proxies().empty());
    EXPECT_EQ(namesOf(store.rules()), Names{"r"});
    EXPECT_EQ(world.stored(kProxies), "[{}]");
    world.defaults.setData(kProxies, jsonOf(std::vector{proxyNamed("q")}));
    world.defaults.set(kRules, {std::string("[]")});
    store.reloadNow();
    EXPECT_EQ(namesOf(store.proxies()), Names{"q"});
    EXPECT_TRUE(store.rules().empty());
}

TEST(ProxyRuleStore, ReloadFromDefaultsComesWithTheMainQueue) {
    StoreWorld world;
    auto store = world.open();
    store.addProxy(proxyNamed("p"));
    store.addRule(ruleNamed("r"));
    world.defaults.remove(kProxies);
    world.defaults.remove(kRules);
    store.reloadFromDefaults();
    EXPECT_EQ(namesOf(store.proxies()), Names{"p"});
    world.dispatch.runMain();
    EXPECT_TRUE(store.proxies().empty());
    EXPECT_TRUE(store.rules().empty());
}

TEST(ProxyRuleStore, ReloadThatIsStillQueuedDoesNothingOnceTheStoreIsGone) {
    StoreWorld world;
    world.open().reloadFromDefaults();
    EXPECT_EQ(world.dispatch.runMain(), 1U);
}

TEST(ProxyRuleStore, UpdateReplacesTheFirstOfThatId) {
    StoreWorld world;
    auto store = world.open();
    auto proxy = proxyNamed("old");
    auto rule = ruleNamed("old");
    for (int time = 0; time < 2; ++time) {
        store.addProxy(proxy);
        store.addRule(rule);
    }
    proxy.name = rule.name = "new";
    store.updateProxy(proxy);
    store.updateRule(rule);
    EXPECT_EQ(namesOf(store.proxies()), (Names{"new", "old"}));
    EXPECT_EQ(namesOf(store.rules()), (Names{"new", "old"}));
    EXPECT_EQ(world.stored(kProxies), jsonOf(store.proxies()));
    EXPECT_EQ(world.stored(kRules), jsonOf(store.rules()));
}

TEST(ProxyRuleStore, UpdateOfAnUnknownIdLeavesDefaultsUntouched) {
    StoreWorld world;
    auto store = world.open();
    store.addProxy(proxyNamed("p"));
    store.addRule(ruleNamed("r"));
    const auto changes = world.defaults.changes().size();
    int told = 0;
    const auto proxies = store.proxiesChanged.connect([&] { ++told; });
    const auto rules = store.rulesChanged.connect([&] { ++told; });
    store.updateProxy(proxyNamed("x"));
    store.updateRule(ruleNamed("x"));
    EXPECT_EQ(namesOf(store.proxies()), Names{"p"});
    EXPECT_EQ(namesOf(store.rules()), Names{"r"});
    EXPECT_EQ(world.defaults.changes().size(), changes);
    EXPECT_EQ(told, 0);
}

TEST(ProxyRuleStore, DeletingAProxyClearsTheReferencesAndKeepsTheActions) {
    StoreWorld world;
    auto store = world.open();
    const auto gone = proxyNamed("gone");
    const auto kept = proxyNamed("kept");
    for (const auto& proxy : {gone, kept, gone}) {
        store.addProxy(proxy);
    }
    auto throughTunnel = ruleNamed("c", gone.id);
    throughTunnel.tunnelID = gone.id;
    for (const auto& rule : {ruleNamed("a", gone.id), ruleNamed("b", kept.id), throughTunnel, ruleNamed("d")}) {
        store.addRule(rule);
    }
    const auto changes = world.defaults.changes().size();
    store.deleteProxy(store.proxies()[0].id);
    EXPECT_EQ(namesOf(store.proxies()), Names{"kept"});
    EXPECT_EQ(store.rules()[0].proxyID, std::nullopt);
    EXPECT_EQ(store.rules()[0].action, RuleAction::proxy);
    EXPECT_EQ(store.rules()[1].proxyID, kept.id);
    EXPECT_EQ(store.rules()[2].proxyID, std::nullopt);
    EXPECT_EQ(store.rules()[2].action, RuleAction::proxy);
    EXPECT_EQ(store.rules()[2].tunnelID, gone.id);
    EXPECT_EQ(world.defaults.changes().size(), changes + 2); // one save
    EXPECT_EQ(world.stored(kRules), jsonOf(store.rules()));
}

TEST(ProxyRuleStore, DeletingProxiesAtOffsetsTakesTheseAndClearsTheirReferences) {
    StoreWorld world;
    auto store = world.open();
    const std::vector proxies{proxyNamed("a"), proxyNamed("b"), proxyNamed("c")};
    for (const auto& proxy : proxies) {
        store.addProxy(proxy);
        store.addRule(ruleNamed("for " + proxy.name, proxy.id));
    }
    const auto changes = world.defaults.changes().size();
    store.deleteProxies({2, 0});
    EXPECT_EQ(namesOf(store.proxies()), Names{"b"});
    EXPECT_EQ(store.rules()[0].proxyID, std::nullopt);
    EXPECT_EQ(store.rules()[1].proxyID, proxies[1].id);
    EXPECT_EQ(store.rules()[2].proxyID, std::nullopt);
    EXPECT_EQ(world.defaults.changes().size(), changes + 2);
}

TEST(ProxyRuleStore, DeletingAtAnOffsetLeavesAnotherProxyOfTheSameIdWithoutRules) {
    StoreWorld world;
    auto store = world.open();
    const auto twice = proxyNamed("twice");
    store.addProxy(twice);
    store.addProxy(twice);
    store.addRule(ruleNamed("r", twice.id));
    store.deleteProxies({0});
    EXPECT_EQ(store.proxies(), std::vector{twice});
    EXPECT_EQ(store.rules()[0].proxyID, std::nullopt);
}

TEST(ProxyRuleStore, ObserversSeeTheProxyGoneBeforeTheRulesAreCleared) {
    StoreWorld world;
    auto store = world.open();
    const auto proxy = proxyNamed("p");
    store.addProxy(proxy);
    store.addRule(ruleNamed("r", proxy.id));
    Names seen;
    const auto see = [&](std::string what) {
        seen.push_back(what + (store.proxies().empty() ? " gone" : " there") +
                       (store.rules()[0].proxyID ? " referred" : " cleared"));
    };
    const auto proxies = store.proxiesChanged.connect([&] { see("proxies"); });
    const auto rules = store.rulesChanged.connect([&] { see("rules"); });
    store.deleteProxy(proxy.id);
    EXPECT_EQ(seen, (Names{"proxies gone referred", "rules gone cleared"}));
}

TEST(ProxyRuleStore, DeletingRulesByIdAndByOffset) {
    StoreWorld world;
    auto store = world.open();
    const auto twice = ruleNamed("twice");
    for (const auto& rule : {twice, ruleNamed("a"), twice, ruleNamed("b"), ruleNamed("c")}) {
        store.addRule(rule);
    }
    store.deleteRule(store.rules()[0].id);
    EXPECT_EQ(namesOf(store.rules()), (Names{"a", "b", "c"}));
    store.deleteRules({0, 2});
    EXPECT_EQ(namesOf(store.rules()), Names{"b"});
    EXPECT_EQ(world.stored(kRules), jsonOf(store.rules()));
}

TEST(ProxyRuleStore, MovesAreStored) {
    StoreWorld world;
    auto store = world.open();
    for (const auto* const name : {"a", "b", "c"}) {
        store.addProxy(proxyNamed(name));
        store.addRule(ruleNamed(name));
    }
    store.moveProxies({0}, 2);
    store.moveRules({2}, 0);
    EXPECT_EQ(namesOf(store.proxies()), (Names{"b", "a", "c"}));
    EXPECT_EQ(namesOf(store.rules()), (Names{"c", "a", "b"}));
    EXPECT_EQ(world.stored(kProxies), jsonOf(store.proxies()));
    EXPECT_EQ(world.stored(kRules), jsonOf(store.rules()));
}

TEST(ProxyRuleStore, ProxyIsFoundByIdTheFirstOfTwo) {
    StoreWorld world;
    auto store = world.open();
    auto proxy = proxyNamed("first");
    store.addProxy(proxy);
    proxy.name = "second";
    store.addProxy(proxy);
    ASSERT_NE(store.proxy(proxy.id), nullptr);
    EXPECT_EQ(store.proxy(proxy.id)->name, "first");
    EXPECT_EQ(store.proxy(support::Uuid{}), nullptr);
    EXPECT_EQ(store.proxy(std::nullopt), nullptr);
}

TEST(ProxyRuleStore, EnabledRulesKeepTheirOrder) {
    StoreWorld world;
    auto store = world.open();
    for (const auto* const name : {"c", "off", "a"}) {
        auto rule = ruleNamed(name);
        rule.isEnabled = rule.name != "off";
        store.addRule(rule);
    }
    EXPECT_EQ(namesOf(store.enabledRules()), (Names{"c", "a"}));
}

TEST(ProxyRuleStore, ListThatCannotBeEncodedLeavesItsKeyAndTheOtherIsWritten) {
    StoreWorld world;
    auto store = world.open();
    store.addProxy(proxyNamed("p"));
    const auto before = world.stored(kProxies);
    store.addProxy(proxyNamed("\xFF"));
    store.addRule(ruleNamed("r"));
    EXPECT_EQ(world.stored(kProxies), before);
    EXPECT_EQ(world.stored(kRules), jsonOf(store.rules()));
}

TEST(ProxyRuleStore, EveryChangeIsTold) {
    StoreWorld world;
    auto store = world.open();
    int proxies = 0;
    int rules = 0;
    const auto one = store.proxiesChanged.connect([&] { ++proxies; });
    const auto two = store.rulesChanged.connect([&] { ++rules; });
    const auto proxy = proxyNamed("p");
    store.addProxy(proxy);
    store.updateProxy(proxy);
    store.moveProxies({0}, 1);
    EXPECT_EQ(proxies, 3);
    EXPECT_EQ(rules, 0);
    const auto rule = ruleNamed("r");
    store.addRule(rule);
    store.updateRule(rule);
    store.moveRules({0}, 1);
    store.deleteRules({0});
    store.deleteRule(rule.id);
    EXPECT_EQ(proxies, 3);
    EXPECT_EQ(rules, 5);
    store.load();
    store.reloadNow();
    EXPECT_EQ(proxies, 5);
    EXPECT_EQ(rules, 7);
}

} // namespace
} // namespace fernwick
