// What the rule editor works on, apart from its widgets: a private copy of a rule as a form, and the input for
// one more entry. Threads: main thread only.
#pragma once

#include "routing/AppEntry.h"
#include "routing/AppRule.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace fernwick {

// The two kinds of entries that can be added. The raw texts are the labels.
enum class AddMode { app, ip };

constexpr auto rawTexts(AddMode) {
    return std::array{support::rawText(AddMode::app, "Application"),
                      support::rawText(AddMode::ip, "IP / Range")};
}

// The three ways to say addresses. The raw texts are the labels.
enum class IPInputMode { single, range, cidr };

constexpr auto rawTexts(IPInputMode) {
    return std::array{support::rawText(IPInputMode::single, "Single IP"),
                      support::rawText(IPInputMode::range, "IP Range"),
                      support::rawText(IPInputMode::cidr, "CIDR")};
}

// The input for an entry, as it was typed. A new one is what the popover opens with.
struct EntryInput {
    AddMode addMode = AddMode::app;
    std::string manualAppText;
    IPInputMode ipInputMode = IPInputMode::single;
    std::string singleIP;
    std::string rangeStart;
    std::string rangeEnd;
    std::string cidrText;
    std::optional<std::string> inputError; // what was wrong with the last attempt, whatever the mode is now

    // Whether there is enough to try.
    [[nodiscard]] bool canAdd() const;

    // The entry of the input's mode, its texts trimmed of blanks. Absent when the input is not valid, which
    // `inputError` then says; it is cleared first.
    [[nodiscard]] std::optional<AppEntry> makeEntry();

private:
    [[nodiscard]] std::optional<AppEntry> makeRange();
    std::optional<AppEntry> fail(std::string message);
};

// A rule under the editor.
struct RuleDraft {
    AppRule rule;
    std::vector<AppEntry> entries; // stand for `rule.applications` until the rule is finished
    std::string hostsText;         // stand for the rule's two other lists
    std::string portsText;
    bool isNew = false;

    // The draft of a rule, or of a new one.
    [[nodiscard]] static RuleDraft of(std::optional<AppRule> rule);

    // Takes away the entry with that id.
    void removeEntry(const support::Uuid& id);

    // The rule with all of the form in it. Nothing is checked.
    [[nodiscard]] AppRule finished() const;
};

} // namespace fernwick
