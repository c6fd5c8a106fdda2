// What must hold of the proxy auto-config script whatever the catalogue is.
#include "routing/PACBuilder.h"
#include "routing/RandomCatalogue.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fernwick {
namespace {

constexpr unsigned kCatalogues = 300;
constexpr std::size_t kSize = 12;
constexpr std::string_view kBegin = "function FindProxyForURL(url, host) {\n\n";
constexpr std::string_view kEnd = "  return \"DIRECT\";\n}";

std::string scriptOf(const ClashWorld& world) {
    return buildPAC(world.rules, world.proxies, world.ports);
}

// Runs the check on many catalogues whose rules are numbered; says which one failed.
void forEachCatalogue(const auto& check) {
    for (unsigned seed = 0; seed < kCatalogues && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomCatalogue random(seed);
        ClashWorld world;
        random.fill(world, kSize);
        for (std::size_t number = 0; number < world.rules.size(); ++number) {
            world.rules[number].name = std::to_string(number);
        }
        check(world, random);
    }
}

std::string bodyOf(const std::string& script) {
    return script.substr(kBegin.size(), script.size() - kBegin.size() - kEnd.size());
}

// The names of the rules that stand in the script.
Lines namesIn(const std::string& script) {
    constexpr std::string_view kComment = "  // Rule: ";
    Lines names;
    for (const auto& line : linesOf(script)) {
        if (line.starts_with(kComment)) {
            names.push_back(line.substr(kComment.size()));
        }
    }
    return names;
}

bool leadsSomewhere(const ClashWorld& world, const AppRule& rule) {
    switch (rule.action) {
    case RuleAction::tunnel:
        return rule.tunnelID && world.ports.contains(*rule.tunnelID);
    case RuleAction::proxy:
        return rule.proxyID && std::ranges::count(world.proxies, *rule.proxyID, &ProxyConfig::id) > 0;
    default:
        return true;
    }
}

TEST(PACProperties, RulesLeftOutAreThoseThatAreOffOrLeadNowhere) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        Lines expected;
        for (const auto& rule : world.rules) {
            if (rule.isEnabled && leadsSomewhere(world, rule)) {
                expected.push_back(rule.name);
            }
        }
        EXPECT_EQ(namesIn(scriptOf(world)), expected); // and so in their order
    });
}

TEST(PACProperties, RulesAreWrittenOneAfterTheOther) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        std::string oneByOne;
        for (const auto& rule : world.rules) {
            oneByOne += bodyOf(buildPAC({rule}, world.proxies, world.ports));
        }
        EXPECT_EQ(scriptOf(world), std::string(kBegin) + oneByOne + std::string(kEnd));
    });
}

TEST(PACProperties, CredentialsAndWhatNeitherPathReadsChangeNothing) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        auto other = world;
        for (auto& proxy : other.proxies) {
            proxy.authentication = {true, "another user", "another password"};
            proxy.useTargetHostname = true;
            proxy.name += "x";
        }
        for (auto& rule : other.rules) {
            rule.applications.emplace_back("Mail");
        }
        EXPECT_EQ(scriptOf(world), scriptOf(other));
    });
}

TEST(PACProperties, CredentialsNeverStandInTheScript) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        auto secret = world;
        for (auto& proxy : secret.proxies) {
            proxy.authentication = {true, "Käthe", "Geheim"};
        }
        const auto script = scriptOf(secret);
        EXPECT_FALSE(script.contains("Käthe") || script.contains("Geheim"));
    });
}

TEST(PACProperties, EachRuleReturnsOnceAndEachElementGivesOneExpressionAtMost) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        for (const auto& rule : world.rules) {
            const auto body = bodyOf(buildPAC({rule}, world.proxies, world.ports));
            const auto lines = linesOf(body);
            const auto returns = std::ranges::count_if(
                lines, [](const std::string& line) { return line.contains("return \""); });
            EXPECT_EQ(returns, body.empty() ? 0 : 1) << body;
            const auto alternatives = std::ranges::count_if(
                lines, [](const std::string& line) { return line.starts_with("    || "); });
            EXPECT_LT(alternatives,
                      static_cast<std::ptrdiff_t>(rule.targetHosts.size() + rule.targetPorts.size()) + 1);
        }
    });
}

// A range is what takes most room.
TEST(PACProperties, SizeIsBoundedByTheCatalogues) {
    constexpr std::size_t kOfElement = 500;
    constexpr std::size_t kOfRule = 100;
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        std::size_t most = kBegin.size() + kEnd.size();
        for (const auto& rule : world.rules) {
            most += kOfRule + kOfElement * (rule.targetHosts.size() + rule.targetPorts.size());
        }
        EXPECT_LE(scriptOf(world).size(), most);
    });
}

} // namespace
} // namespace fernwick
