function FindProxyForURL(url, host) {

  // Rule: Work
  if ((dnsDomainIs(host, ".corp.example") || host === "corp.example")
    || (url.match(/:8443([\/\?]|$)/) !== null)) { return "SOCKS5 127.0.0.1:1080; DIRECT"; }

  // Rule: Ads
  if ((host === "ads.example")) { return "PROXY 0.0.0.0:0"; }

  return "DIRECT";
}