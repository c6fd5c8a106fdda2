#include "routing/AppEntry.h"

#include "routing/IPv4Text.h"
#include "support/Text.h"

namespace fernwick {

namespace {

AppEntryType typeOf(std::string_view text) {
    if (isValidCIDR(text)) {
        return AppEntryType::cidr;
    }
    if (text.contains('-') && support::startsWithNumber(text)) {
        return AppEntryType::ipRange;
    }
    return isValidIPv4(text) ? AppEntryType::ip : AppEntryType::app;
}

} // namespace

AppEntry AppEntry::picked(std::string_view name, std::string_view bundleID) {
    return {support::Uuid::random(), AppEntryType::app, std::string(bundleID.empty() ? name : bundleID),
            std::string(name.empty() ? bundleID : name)};
}

AppEntry AppEntry::classified(std::string_view text) {
    return {support::Uuid::random(), typeOf(text), std::string(text), std::string(text)};
}

} // namespace fernwick
