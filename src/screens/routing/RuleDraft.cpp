#include "screens/routing/RuleDraft.h"

#include "routing/IPv4Text.h"

#include <string_view>
#include <utility>

namespace fernwick {

namespace {

std::string trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

AppEntry entryOf(AppEntryType type, const std::string& text) {
    return {support::Uuid::random(), type, text, text};
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const auto& text : texts) {
        all.append(&text == &texts.front() ? "" : "; ").append(text);
    }
    return all;
}

} // namespace

bool EntryInput::canAdd() const {
    if (addMode == AddMode::app) {
        return !trimmed(manualAppText).empty();
    }
    switch (ipInputMode) {
    case IPInputMode::single:
        return !singleIP.empty();
    case IPInputMode::range:
        return !rangeStart.empty() && !rangeEnd.empty();
    case IPInputMode::cidr:
        break;
    }
    return !cidrText.empty();
}

std::optional<AppEntry> EntryInput::makeEntry() {
    inputError.reset();
    if (addMode == AddMode::app) {
        const auto text = trimmed(manualAppText);
        return text.empty() ? std::nullopt : std::optional(entryOf(AppEntryType::app, text));
    }
    switch (ipInputMode) {
    case IPInputMode::single:
        if (const auto text = trimmed(singleIP); isValidIPv4(text)) {
            return entryOf(AppEntryType::ip, text);
        }
        return fail("Invalid IP address");
    case IPInputMode::range:
        return makeRange();
    case IPInputMode::cidr:
        break;
    }
    const auto text = trimmed(cidrText);
    return isValidCIDR(text) ? std::optional(entryOf(AppEntryType::cidr, text))
                             : fail("Invalid CIDR (e.g. 192.168.0.0/24)");
}

std::optional<AppEntry> EntryInput::makeRange() {
    const auto start = trimmed(rangeStart);
    const auto end = trimmed(rangeEnd);
    if (!isValidIPv4(start) || !isValidIPv4(end)) {
        return fail("Invalid IP address");
    }
    // A valid address need not convert: "1.2.3.999.4" has five numbers then, and counts as 0.
    if (ipToUInt32(start).value_or(0) > ipToUInt32(end).value_or(0)) {
        return fail("Start must be \u2264 End");
    }
    return entryOf(AppEntryType::ipRange, start + "-" + end);
}

std::optional<AppEntry> EntryInput::fail(std::string message) {
    inputError = std::move(message);
    return std::nullopt;
}

RuleDraft RuleDraft::of(std::optional<AppRule> rule) {
    RuleDraft draft;
    draft.isNew = !rule.has_value();
    draft.rule = rule ? std::move(*rule) : AppRule::create();
    for (const auto& text : draft.rule.applications) {
        draft.entries.push_back(AppEntry::classified(text));
    }
    draft.hostsText = joined(draft.rule.targetHosts);
    draft.portsText = joined(draft.rule.targetPorts);
    return draft;
}

void RuleDraft::removeEntry(const support::Uuid& id) {
    std::erase_if(entries, [&](const AppEntry& entry) { return entry.id == id; });
}

AppRule RuleDraft::finished() const {
    AppRule finished = rule;
    finished.applications.clear();
    for (const auto& entry : entries) {
        finished.applications.push_back(entry.value);
    }
    finished.setTargetHosts(hostsText);
    finished.setTargetPorts(portsText);
    return finished;
}

} // namespace fernwick
