// One element of a rule's applications, as the rule editor works with it. Rules themselves hold plain texts.
#pragma once

#include "support/Record.h"
#include "support/Uuid.h"

#include <array>
#include <string>
#include <string_view>
#include <tuple>

namespace fernwick {

enum class AppEntryType { app, ip, ipRange, cidr };

constexpr auto rawTexts(AppEntryType) {
    return std::array{support::rawText(AppEntryType::app, "app"), support::rawText(AppEntryType::ip, "ip"),
                      support::rawText(AppEntryType::ipRange, "ipRange"),
                      support::rawText(AppEntryType::cidr, "cidr")};
}

struct AppEntry {
    support::Uuid id; // fresh for every entry that is made
    AppEntryType type = AppEntryType::app;
    std::string value;       // what goes into the rule
    std::string displayName; // what the screen shows

    bool operator==(const AppEntry&) const = default;

    // An application that was picked as a file: its bundle identifier is the value and its name is shown, each
    // standing in for the other when that is empty.
    [[nodiscard]] static AppEntry picked(std::string_view name, std::string_view bundleID);

    // A text of a rule, classified by its form. What has a hyphen and starts with a number is a range, even
    // "7-Zip".
    [[nodiscard]] static AppEntry classified(std::string_view text);

    static constexpr auto fields() {
        using support::field;
        return std::tuple{field("id", &AppEntry::id), field("type", &AppEntry::type),
                          field("value", &AppEntry::value), field("displayName", &AppEntry::displayName)};
    }
};

} // namespace fernwick
