#include "screens/routing/RoutingTexts.h"

#include "screens/theme/DisplayText.h"
#include "support/Text.h"

#include <algorithm>
#include <string>

namespace fernwick {

namespace {

// A count and a noun that gets an "s" unless there is one, whatever the noun.
QString counted(const QString& pattern, std::size_t count) {
    return pattern.arg(count) + (count == 1 ? QString() : QStringLiteral("s"));
}

template <class Record, class Matches>
std::vector<const Record*> kept(const std::vector<Record>& records, Matches matches) {
    std::vector<const Record*> found;
    for (const Record& record : records) {
        if (matches(record)) {
            found.push_back(&record);
        }
    }
    return found;
}

} // namespace

ProxySelection filteredProxies(const std::vector<ProxyConfig>& proxies, std::string_view searchText) {
    const support::CaselessNeedle needle(searchText);
    return kept(proxies, [&](const ProxyConfig& proxy) {
        return searchText.empty() || needle.isIn(proxy.name) || needle.isIn(proxy.address);
    });
}

RuleSelection filteredRules(const std::vector<AppRule>& rules, std::string_view searchText) {
    const support::CaselessNeedle needle(searchText);
    std::string hosts;
    return kept(rules, [&](const AppRule& rule) {
        if (searchText.empty() || needle.isIn(rule.name)) {
            return true;
        }
        hosts.clear();
        for (const auto& host : rule.targetHosts) {
            hosts += host;
        }
        return needle.isIn(hosts);
    });
}

QString protocolText(ProxyProtocol proto) {
    switch (proto) {
    case ProxyProtocol::socks4:
        return QStringLiteral("SOCKS Version 4");
    case ProxyProtocol::https:
        return QStringLiteral("HTTPS");
    case ProxyProtocol::socks5:
        break;
    }
    return QStringLiteral("SOCKS Version 5");
}

NamedColor protocolColor(ProxyProtocol proto) {
    switch (proto) {
    case ProxyProtocol::socks4:
        return &Palette::purple;
    case ProxyProtocol::https:
        return &Palette::green;
    case ProxyProtocol::socks5:
        break;
    }
    return &Palette::blue;
}

QString actionText(RuleAction action) {
    return displayLine(support::toRawText(action));
}

NamedColor actionColor(RuleAction action) {
    switch (action) {
    case RuleAction::proxy:
        return &Palette::blue;
    case RuleAction::block:
        return &Palette::red;
    case RuleAction::tunnel:
        return &Palette::orange;
    case RuleAction::direct:
        break;
    }
    return &Palette::green;
}

Icon actionIcon(RuleAction action) {
    switch (action) {
    case RuleAction::proxy:
        return Icon::branch;
    case RuleAction::block:
        return Icon::crossCircle;
    case RuleAction::tunnel:
        return Icon::network;
    case RuleAction::direct:
        break;
    }
    return Icon::arrowRight;
}

NamedHosts namedHosts(const AppRule& rule) {
    NamedHosts hosts;
    for (const auto& host : rule.targetHosts) {
        if (!host.empty() && ++hosts.count == 1) {
            hosts.first = host;
        }
    }
    return hosts;
}

QString hostSummary(const NamedHosts& hosts) {
    if (hosts.count == 0) {
        return QStringLiteral("Any host");
    }
    return hosts.count == 1
               ? displayLine(hosts.first)
               : QStringLiteral("%1 +%2 more").arg(displayLine(hosts.first), QString::number(hosts.count - 1));
}

QString proxyCountText(std::size_t count) {
    return counted(QStringLiteral("%1 proxy"), count);
}

QString activeCountText(const std::vector<AppRule>& rules) {
    const auto enabled = std::ranges::count_if(rules, &AppRule::isEnabled);
    return QStringLiteral("%1/%2 active").arg(enabled).arg(rules.size());
}

QString usedByTitle(std::size_t count) {
    return counted(QStringLiteral("Used by %1 Rule"), count);
}

std::optional<QString> tunnelName(const TunnelNames& tunnels, const std::optional<support::Uuid>& id) {
    const auto found = id ? std::ranges::find(tunnels, *id, &TunnelName::id) : tunnels.end();
    return found != tunnels.end() ? std::optional(displayLine(found->name)) : std::nullopt;
}

} // namespace fernwick
