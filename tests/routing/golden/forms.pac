function FindProxyForURL(url, host) {

  // Rule: Mọi dạng
  if ((host === "10.0.0.5")
    || (function(){
  var ip=dnsResolve(host)||host;
  var s="10.0.0.1".split("."),e="10.0.0.9".split("."),h=ip.split(".");
  if(h.length!==4)return false;
  var hi=h[0]*16777216+h[1]*65536+h[2]*256+h[3]*1;
  var si=s[0]*16777216+s[1]*65536+s[2]*256+s[3]*1;
  var ei=e[0]*16777216+e[1]*65536+e[2]*256+e[3]*1;
  return hi>=si&&hi<=ei;
})()
    || isInNet(dnsResolve(host)||host, "10.1.0.0", "255.240.0.0")
    || (function(){
  var ip=dnsResolve(host)||host;
  var s="my".split("."),e="site.example".split("."),h=ip.split(".");
  if(h.length!==4)return false;
  var hi=h[0]*16777216+h[1]*65536+h[2]*256+h[3]*1;
  var si=s[0]*16777216+s[1]*65536+s[2]*256+s[3]*1;
  var ei=e[0]*16777216+e[1]*65536+e[2]*256+e[3]*1;
  return hi>=si&&hi<=ei;
})()
    || (/^ads.*\.x\.example$/i.test(host))
    || (dnsDomainIs(host, ".a.example") || host === "a.example")
    || (host === "Tiếng.example")
    || (url.match(/:80([\/\?]|$)/) !== null)
    || (function(){ var m=url.match(/:(\d+)/); if(!m)return false; var p=parseInt(m[1]); return p>=8000&&p<=9000; })()) { return "SOCKS5 127.0.0.1:1081; DIRECT"; }

  // Rule: New Rule
  if ((host === "to.example")) { return "SOCKS5 proxy.example:1080; DIRECT"; }

  // Rule: New Rule
  if ((host === "to.example")) { return "SOCKS5 proxy.example:1080; DIRECT"; }

  // Rule: New Rule
  if ((host === "to.example")) { return "PROXY proxy.example:1080; DIRECT"; }

  // Rule: New Rule
  if ((host === "behind.example")) { return "SOCKS5 127.0.0.1:1081; DIRECT"; }

  // Rule: New Rule
  if ((host === "down.example")) { return "SOCKS5 127.0.0.1:1080; DIRECT"; }

  // Rule: New Rule
  return "DIRECT";

  return "DIRECT";
}