#include "routing/ClashConfig.h"

#include "routing/ClashProxies.h"
#include "routing/ClashRules.h"
#include "routing/TextLines.h"
#include "support/IsoDate.h"

#include <string_view>

namespace fernwick {

namespace {

// The two names under skip-domain, of a smart-home vendor's cloud and its devices' host, break when sniffed.
// The last host under fake-ip-filter stands for this very machine, where a messenger's login listens.
constexpr std::string_view kSettings = R"(mixed-port: 7890
socks-port: 7891
allow-lan: false
mode: rule
log-level: warning
ipv6: false
find-process-mode: always
sniffer:
  enable: true
  sniff:
    HTTP:
      ports: [80, 8080-8880]
      override-destination: true
    TLS:
      ports: [443, 8443]
      override-destination: true
    QUIC:
      ports: [443, 8443]
      override-destination: false
  skip-domain:
    - "Mijia Cloud"
    - "dlg.io.mi.com"
external-controller: 127.0.0.1:9090
secret: ""
dns:
  enable: true
  ipv6: false
  listen: 0.0.0.0:1053
  enhanced-mode: fake-ip
  fake-ip-range: 198.18.0.1/16
  fake-ip-filter:
    - "*.lan"
    - "*.local"
    - "*.localhost"
    - "localhost.ptlogin2.qq.com"
  nameserver:
    - 8.8.8.8
    - 1.1.1.1
  default-nameserver:
    - 8.8.8.8
    - 1.1.1.1
  fallback:
    - tls://1.1.1.1:853
    - tls://8.8.8.8:853
  fallback-filter:
    geoip: true
    geoip-code: VN
    ipcidr:
      - 240.0.0.0/4
)";

constexpr std::string_view kTunOn = R"(tun:
  enable: true
  stack: mixed
  dns-hijack:
    - any:53
  auto-route: true
  auto-detect-interface: true
  strict-route: true
  inet6-address: []
  route-exclude-address:
)";

constexpr std::string_view kTunOff = R"(tun:
  enable: false

)";

} // namespace

std::string generateClashConfig(const std::vector<Tunnel>& tunnels, const TunnelPortMap& tunnelPorts,
                                const std::vector<ProxyConfig>& proxies, const std::vector<AppRule>& rules,
                                const platform::Clock& clock) {
    const ClashProxies named(tunnels, tunnelPorts, proxies);
    const auto targeted = targetedRules(rules, named);
    std::string text;
    text.reserve(kSettings.size() + named.expectedSize() + expectedSize(targeted)); // growing would copy it all
    appendLine(text, "# Fernwick — Auto-generated Clash Meta config");
    appendLine(text, "# DO NOT EDIT — regenerated automatically");
    appendLine(text, "# Generated: ", support::iso8601Text(clock.now()));
    text += kSettings;
    if (named.hasLiveTunnel()) {
        text += kTunOn;
        appendExcludedNetworks(text, targeted);
    } else {
        text += kTunOff;
    }
    appendLine(text, "proxies:");
    named.appendProxies(text);
    appendLine(text, "proxy-groups:");
    named.appendGroups(text);
    appendLine(text, "rules:");
    appendRules(text, targeted);
    return text;
}

} // namespace fernwick
