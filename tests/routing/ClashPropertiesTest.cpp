// What must hold of the engine's configuration whatever the catalogue is.
#include "routing/ClashNames.h"
#include "routing/IPv4Text.h"
#include "routing/RandomCatalogue.h"
#include "support/Integer.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <set>

namespace fernwick {
namespace {

constexpr unsigned kCatalogues = 300;
constexpr std::size_t kSize = 12;

// Runs the check on many catalogues; says which one failed.
void forEachCatalogue(const auto& check) {
    for (unsigned seed = 0; seed < kCatalogues && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomCatalogue random(seed);
        ClashWorld world;
        random.fill(world, kSize);
        check(world, random);
    }
}

bool isLive(const ClashWorld& world, const support::Uuid& tunnelID) {
    const auto port = world.ports.find(tunnelID);
    return port != world.ports.end() && !port->second.empty() &&
           std::ranges::find(world.tunnels, tunnelID, &Tunnel::id) != world.tunnels.end();
}

std::set<std::string> setOf(const Lines& lines) {
    return {lines.begin(), lines.end()};
}

std::string targetOf(std::string line) {
    if (line.ends_with(",no-resolve")) {
        line.resize(line.size() - 11);
    }
    return line.substr(line.rfind(',') + 1);
}

std::string quoted(const std::string& name) {
    return "\"" + name + "\"";
}

TEST(ClashProperties, EveryTargetIsAGroupUnlessItsTunnelIsDown) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        auto known = setOf(world.values("proxy-groups", "  - name: "));
        known.insert({quoted("DIRECT"), quoted("REJECT")});
        for (const auto& proxy : world.proxies) {
            // One that is down has a target all the same when something live has its name.
            if (proxy.tunnelID && !isLive(world, *proxy.tunnelID)) {
                known.insert(quoted("GRP_" + sanitizeName(proxy.effectiveName())));
            }
        }
        for (const auto& line : world.section("rules")) {
            EXPECT_TRUE(known.contains(quoted(targetOf(line)))) << line;
        }
    });
}

TEST(ClashProperties, ProxiesHaveNamesOfTheirOwnAndEveryMemberIsAProxy) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        const auto names = world.values("proxies", "  - name: ");
        const auto known = setOf(names);
        EXPECT_EQ(known.size(), names.size());
        for (const auto& member : world.values("proxy-groups", "      - ")) {
            EXPECT_TRUE(member == "DIRECT" || known.contains(member)) << member;
        }
    });
}

// Written as the rule is told: a group is added unless the text already has one of that name.
TEST(ClashProperties, GroupsAreThoseThatASearchOfTheTextWouldFind) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        const auto emitted = setOf(world.values("proxies", "  - name: "));
        const auto groups = world.values("proxy-groups", "  - name: ");
        std::string text;
        for (const auto& proxy : world.proxies) {
            if (!proxy.tunnelID) {
                text += "name: " + quoted("GRP_" + sanitizeName(proxy.effectiveName())) + "\n";
            }
        }
        for (const auto& proxy : world.proxies) {
            const auto name = sanitizeName(proxy.effectiveName());
            const auto line = "name: " + quoted("GRP_" + name);
            if (proxy.tunnelID && isLive(world, *proxy.tunnelID) && emitted.contains(quoted(name)) &&
                !text.contains(line)) {
                text += line + "\n";
            }
        }
        std::string actual;
        for (const auto& group : groups) {
            actual += group.starts_with("\"GRP_") ? "name: " + group + "\n" : "";
        }
        EXPECT_EQ(actual, text);
    });
}

TEST(ClashProperties, RulesAreWrittenOneAfterTheOther) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        Lines oneByOne;
        auto single = world;
        for (const auto& rule : world.rules) {
            single.rules = {rule};
            std::ranges::copy(single.ruleLines(), std::back_inserter(oneByOne));
        }
        EXPECT_EQ(world.ruleLines(), oneByOne);
    });
}

TEST(ClashProperties, RulesThatAreOffChangeNothing) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        auto enabled = world;
        std::erase_if(enabled.rules, [](const AppRule& rule) { return !rule.isEnabled; });
        EXPECT_EQ(world.text(), enabled.text());
    });
}

TEST(ClashProperties, TheSameCatalogueGivesTheSameText) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        const auto copy = world;
        EXPECT_EQ(world.text(), copy.text());
    });
}

TEST(ClashProperties, NoLineHasTrailingBlanksAndTheLastOneEnds) {
    forEachCatalogue([](const ClashWorld& world, RandomCatalogue&) {
        const auto text = world.text();
        EXPECT_TRUE(text.ends_with("  - MATCH,DIRECT\n"));
        for (const auto& line : linesOf(text)) {
            EXPECT_EQ(line, support::trimBlanks("x" + line).substr(1));
        }
    });
}

// The rule in as many words, test by test.
void classify(const std::string& text, std::set<std::string>& routed) {
    if (text.starts_with("192.168.")) {
        routed.insert("192.168.0.0/16");
    } else if (text.starts_with("10.")) {
        routed.insert("10.0.0.0/8");
    } else if (text.starts_with("172.")) {
        routed.insert("172.16.0.0/12");
    }
}

void classifyHost(const std::string& host, std::set<std::string>& routed) {
    const bool number = support::startsWithNumber(host);
    if (host.contains('/')) {
        classify(host.substr(0, host.find('/')), routed);
    }
    if ((host.contains('-') && number) || isIPv4Literal(host)) {
        classify(host, routed);
    }
    if (number && !host.contains('/')) {
        classify(host + ".", routed);
    }
}

TEST(ClashProperties, ExcludedNetworksAreThoseThatNoRuleRoutes) {
    forEachCatalogue([](ClashWorld& world, RandomCatalogue& random) {
        const auto live = world.addTunnel("live");
        std::set<std::string> routed;
        world.rules.clear();
        for (int count = 0; count < 3; ++count) {
            auto& rule = world.addRule(RuleAction::tunnel, live);
            rule.targetHosts = random.elements();
            for (const auto& host : rule.targetHosts) {
                classifyHost(std::string(support::trimBlanks(host)), routed);
            }
        }
        auto excluded = setOf(world.values("tun", "    - "));
        EXPECT_EQ(excluded.size() + routed.size(), 9U); // one is the DNS hijack
        excluded.merge(routed);
        EXPECT_EQ(excluded.size(), 9U);
    });
}

struct Block {
    std::uint64_t start, size;
};

Block blockOf(const std::string& network) {
    const auto slash = network.find('/');
    const auto prefix = support::parseInteger<unsigned>(std::string_view(network).substr(slash + 1));
    return {*ipToUInt32(network.substr(0, slash)), std::uint64_t{1} << (32 - *prefix)};
}

// Blocks that lie side by side, each at a multiple of its size, are the fewest when no two are the halves of
// one.
void checkCover(std::uint32_t first, std::uint32_t last, const std::vector<std::string>& networks) {
    std::uint64_t next = first;
    std::optional<Block> before;
    for (const auto& network : networks) {
        const auto block = blockOf(network);
        EXPECT_EQ(block.start, next) << network;
        EXPECT_EQ(block.start % block.size, 0U) << network;
        const bool halves = before && before->size == block.size && before->start % (2 * block.size) == 0;
        EXPECT_FALSE(halves) << network;
        next = block.start + block.size;
        before = block;
    }
    EXPECT_EQ(next, std::uint64_t{last} + 1);
}

TEST(ClashProperties, CoversOfRangesAreExactAndMinimal) {
    RandomCatalogue random(1);
    for (int count = 0; count < 5000 && !testing::Test::HasFailure(); ++count) {
        const auto some = random.address();
        const auto other = random.chance(50) ? random.address() : some.substr(0, some.rfind('.')) + ".200";
        const auto first = ipToUInt32(some);
        const auto last = ipToUInt32(other);
        const auto networks = ipRangeToCIDRs(some + "-" + other);
        SCOPED_TRACE(some + "-" + other);
        ASSERT_EQ(networks.has_value(), *first <= *last);
        if (networks) {
            checkCover(*first, *last, *networks);
        }
    }
}

} // namespace
} // namespace fernwick
