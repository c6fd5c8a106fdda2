#include "screens/routing/RuleDraft.h"

#include <gmock/gmock.h>

namespace fernwick::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

EntryInput ipInput(IPInputMode mode) {
    EntryInput input;
    input.addMode = AddMode::ip;
    input.ipInputMode = mode;
    return input;
}

EntryInput range(std::string start, std::string end) {
    auto input = ipInput(IPInputMode::range);
    input.rangeStart = std::move(start);
    input.rangeEnd = std::move(end);
    return input;
}

// The type and value of the entry, or the error, or nothing.
std::string outcome(EntryInput input) {
    const auto entry = input.makeEntry();
    if (!entry) {
        return input.inputError.value_or("nothing");
    }
    EXPECT_EQ(entry->displayName, entry->value);
    EXPECT_FALSE(input.inputError.has_value());
    return std::string(support::toRawText(entry->type)) + " " + entry->value;
}

std::string single(std::string text) {
    auto input = ipInput(IPInputMode::single);
    input.singleIP = std::move(text);
    return outcome(input);
}

std::string cidr(std::string text) {
    auto input = ipInput(IPInputMode::cidr);
    input.cidrText = std::move(text);
    return outcome(input);
}

std::string app(std::string text) {
    EntryInput input;
    input.manualAppText = std::move(text);
    return outcome(input);
}

TEST(RuleDraft, NewRuleStartsWithTheDefaults) {
    const auto draft = RuleDraft::of(std::nullopt);
    EXPECT_TRUE(draft.isNew);
    EXPECT_EQ(draft.rule.name, "New Rule");
    EXPECT_TRUE(draft.rule.isEnabled);
    EXPECT_EQ(draft.rule.action, RuleAction::direct);
    EXPECT_FALSE(draft.rule.proxyID || draft.rule.tunnelID);
    EXPECT_THAT(draft.entries, IsEmpty());
    EXPECT_EQ(draft.hostsText + draft.portsText, "");
    EXPECT_NE(draft.rule.id, RuleDraft::of(std::nullopt).rule.id);
}

TEST(RuleDraft, ApplicationsOpenAsClassifiedEntries) {
    auto rule = AppRule::create();
    rule.applications = {"192.168.0.0/24", "10.0.0.1", "10.0.0.1-10.0.0.9", "com.apple.Safari", ""};
    const auto draft = RuleDraft::of(rule);
    std::vector<AppEntryType> types;
    for (const auto& entry : draft.entries) {
        types.push_back(entry.type);
        EXPECT_EQ(entry.value, entry.displayName);
    }
    EXPECT_THAT(types, ElementsAre(AppEntryType::cidr, AppEntryType::ip, AppEntryType::ipRange,
                                   AppEntryType::app, AppEntryType::app));
    EXPECT_EQ(draft.finished(), rule);
    EXPECT_FALSE(draft.isNew);
}

TEST(RuleDraft, HostsAreSplitAtSemicolonsAndOpenJoined) {
    auto draft = RuleDraft::of(AppRule::create());
    draft.hostsText = "a.example;;  b.example";
    const auto rule = draft.finished();
    EXPECT_THAT(rule.targetHosts, ElementsAre("a.example", "b.example"));
    EXPECT_EQ(RuleDraft::of(rule).hostsText, "a.example; b.example");
}

TEST(RuleDraft, OnlySemicolonsSeparatePorts) {
    auto draft = RuleDraft::of(AppRule::create());
    draft.portsText = "80, 443";
    EXPECT_THAT(draft.finished().targetPorts, ElementsAre("80, 443"));
    draft.portsText = "80; 443;;  ";
    EXPECT_THAT(draft.finished().targetPorts, ElementsAre("80", "443", ""));
}

TEST(RuleDraft, LineEndsInTheHostsStayWhatWasTyped) {
    auto draft = RuleDraft::of(AppRule::create());
    draft.hostsText = "a.example;\nb.example";
    EXPECT_THAT(draft.finished().targetHosts, ElementsAre("a.example", "\nb.example"));
}

TEST(RuleDraft, FinishedKeepsValuesAndDropsDisplayNames) {
    auto draft = RuleDraft::of(std::nullopt);
    draft.entries = {AppEntry::picked("Safari", "com.apple.Safari"), AppEntry::classified("10.0.0.1")};
    EXPECT_THAT(draft.finished().applications, ElementsAre("com.apple.Safari", "10.0.0.1"));
    draft.removeEntry(draft.entries.front().id);
    EXPECT_THAT(draft.finished().applications, ElementsAre("10.0.0.1"));
    draft.removeEntry(support::Uuid::random());
    EXPECT_EQ(draft.entries.size(), 1U);
}

TEST(EntryInput, ApplicationIsTakenAsTypedWithoutBlanksAround) {
    EXPECT_EQ(app(" \tcom.google.* \t"), "app com.google.*");
    EXPECT_EQ(app("10.0.0.1"), "app 10.0.0.1");
    EXPECT_EQ(app(" \t "), "nothing");
}

TEST(EntryInput, SingleAddressMustBeOne) {
    EXPECT_EQ(single(" 10.0.0.1\t"), "ip 10.0.0.1");
    EXPECT_EQ(single("1.2.3.4/24"), "Invalid IP address");
    EXPECT_EQ(single("   "), "Invalid IP address");
    EXPECT_EQ(single("1.2.3.x.4"), "ip 1.2.3.x.4");
}

TEST(EntryInput, RangeMustNotRunBackwards) {
    EXPECT_EQ(outcome(range("10.0.0.9", "10.0.0.1")), "Start must be \u2264 End");
    EXPECT_EQ(outcome(range("10.0.0.1", "10.0.0.1")), "ipRange 10.0.0.1-10.0.0.1");
    EXPECT_EQ(outcome(range(" 10.0.0.1 ", "\t10.0.0.9")), "ipRange 10.0.0.1-10.0.0.9");
    EXPECT_EQ(outcome(range("abc", "10.0.0.1")), "Invalid IP address");
    EXPECT_EQ(outcome(range("10.0.0.1", "abc")), "Invalid IP address");
}

TEST(EntryInput, AddressThatDoesNotConvertCountsAsZero) {
    // Five numbers, of which four are below 256: valid, but no number.
    EXPECT_EQ(outcome(range("9.9.9.999.9", "0.0.0.0")), "ipRange 9.9.9.999.9-0.0.0.0");
    EXPECT_EQ(outcome(range("0.0.0.1", "9.9.9.999.9")), "Start must be \u2264 End");
}

TEST(EntryInput, NetworkMustBeOne) {
    EXPECT_EQ(cidr(" 192.168.0.0/24 "), "cidr 192.168.0.0/24");
    EXPECT_EQ(cidr("1.2.3.4/33"), "Invalid CIDR (e.g. 192.168.0.0/24)");
    EXPECT_EQ(cidr("1.2.3.4"), "Invalid CIDR (e.g. 192.168.0.0/24)");
}

TEST(EntryInput, AttemptClearsTheErrorOfTheOneBefore) {
    auto input = ipInput(IPInputMode::single);
    input.singleIP = "x";
    EXPECT_FALSE(input.makeEntry().has_value());
    input.addMode = AddMode::app;
    EXPECT_TRUE(input.inputError.has_value());
    EXPECT_FALSE(input.makeEntry().has_value());
    EXPECT_FALSE(input.inputError.has_value());
}

TEST(EntryInput, AddIsPossibleOnceThereIsInput) {
    EntryInput app;
    EXPECT_FALSE(app.canAdd());
    app.manualAppText = " \t";
    EXPECT_FALSE(app.canAdd());
    app.manualAppText = " x";
    EXPECT_TRUE(app.canAdd());
    auto single = ipInput(IPInputMode::single);
    EXPECT_FALSE(single.canAdd());
    single.singleIP = " ";
    EXPECT_TRUE(single.canAdd());
    EXPECT_FALSE(range("10.0.0.1", "").canAdd());
    EXPECT_FALSE(range("", "10.0.0.1").canAdd());
    EXPECT_TRUE(range("a", "b").canAdd());
    auto cidr = ipInput(IPInputMode::cidr);
    EXPECT_FALSE(cidr.canAdd());
    cidr.cidrText = "x";
    EXPECT_TRUE(cidr.canAdd());
}

TEST(EntryInput, LabelsAreTheRawTexts) {
    EXPECT_EQ(support::toRawText(AddMode::app), "Application");
    EXPECT_EQ(support::toRawText(AddMode::ip), "IP / Range");
    EXPECT_EQ(support::toRawText(IPInputMode::single), "Single IP");
    EXPECT_EQ(support::toRawText(IPInputMode::range), "IP Range");
    EXPECT_EQ(support::toRawText(IPInputMode::cidr), "CIDR");
}

} // namespace
} // namespace fernwick::tests
