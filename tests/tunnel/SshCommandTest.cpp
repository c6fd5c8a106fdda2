#include "tunnel/SshCommand.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fernwick {
namespace {

using Arguments = std::vector<std::string>;

Tunnel sample() {
    Tunnel tunnel;
    tunnel.id = support::Uuid::random();
    tunnel.host = "example.com";
    tunnel.user = "ubuntu";
    tunnel.localPort = "8080";
    tunnel.remotePort = "80";
    return tunnel;
}

// The argument that follows `flag`, or "(none)".
std::string after(const Arguments& arguments, const std::string& flag) {
    const auto found = std::ranges::find(arguments, flag);
    return found != arguments.end() && found + 1 != arguments.end() ? *(found + 1) : "(none)";
}

bool hasOption(const Arguments& arguments, const std::string& option) {
    return std::ranges::find(arguments, option) != arguments.end();
}

TEST(SshCommand, SampleTunnelGivesTheWholeList) {
    EXPECT_EQ(buildSSHArguments(sample(), {}),
              (Arguments{"-N", "-o", "ServerAliveInterval=60", "-o", "ServerAliveCountMax=3", "-o",
                         "ConnectTimeout=15", "-o", "StrictHostKeyChecking=accept-new", "-o",
                         "IdentityAgent=none", "-p", "22", "-o", "ExitOnForwardFailure=yes", "-L",
                         "127.0.0.1:8080:localhost:80", "ubuntu@example.com"}));
}

TEST(SshCommand, EveryPartStandsInItsPlace) {
    auto tunnel = sample();
    tunnel.identityKeyID = support::Uuid::random();
    tunnel.compression = true;
    tunnel.jumpHost = "bastion";
    tunnel.tunnelType = TunnelType::socks5;
    EXPECT_EQ(buildSSHArguments(tunnel, {.path = "/keys/id"}), (Arguments{"-N",
                                                                          "-o",
                                                                          "ServerAliveInterval=60",
                                                                          "-o",
                                                                          "ServerAliveCountMax=3",
                                                                          "-o",
                                                                          "ConnectTimeout=15",
                                                                          "-o",
                                                                          "StrictHostKeyChecking=accept-new",
                                                                          "-o",
                                                                          "BatchMode=yes",
                                                                          "-o",
                                                                          "IdentityAgent=none",
                                                                          "-C",
                                                                          "-p",
                                                                          "22",
                                                                          "-J",
                                                                          "bastion",
                                                                          "-o",
                                                                          "ExitOnForwardFailure=yes",
                                                                          "-D",
                                                                          "127.0.0.1:8080",
                                                                          "-i",
                                                                          "/keys/id",
                                                                          "ubuntu@example.com"}));
}

struct AuthenticationRow {
    std::string name;
    AuthMethod method;
    bool hasKey;
    bool hasPassphrase;
    Arguments group;
};

class SshCommandAuthentication : public testing::TestWithParam<AuthenticationRow> {};

TEST_P(SshCommandAuthentication, GivesItsGroup) {
    auto tunnel = sample();
    tunnel.authMethod = GetParam().method;
    if (GetParam().hasKey) {
        tunnel.identityKeyID = support::Uuid::random();
    }
    const auto arguments =
        buildSSHArguments(tunnel, {.path = std::nullopt, .hasStoredPassphrase = GetParam().hasPassphrase});
    constexpr std::ptrdiff_t kGroupBegin = 9;
    const auto port = std::ranges::find(arguments, "-p");
    EXPECT_EQ(Arguments(arguments.begin() + kGroupBegin, port), GetParam().group);
    EXPECT_EQ(after(arguments, "-i"), "(none)");
}

INSTANTIATE_TEST_SUITE_P(
    AllMethods, SshCommandAuthentication,
    testing::Values(
        AuthenticationRow{"Password",
                          AuthMethod::password,
                          false,
                          false,
                          {"-o", "PreferredAuthentications=password", "-o", "PubkeyAuthentication=no", "-o",
                           "IdentityAgent=none"}},
        AuthenticationRow{"KeyWithoutPassphrase",
                          AuthMethod::privateKey,
                          true,
                          false,
                          {"-o", "BatchMode=yes", "-o", "IdentityAgent=none"}},
        AuthenticationRow{
            "KeyWithPassphrase", AuthMethod::privateKey, true, true, {"-o", "IdentityAgent=none"}},
        AuthenticationRow{"NoKey", AuthMethod::privateKey, false, false, {"-o", "IdentityAgent=none"}},
        AuthenticationRow{
            "Agent", AuthMethod::agent, false, false, {"-o", "BatchMode=yes", "-o", "IdentityAgent=default"}}),
    [](const auto& row) { return row.param.name; });

struct ForwardRow {
    std::string name;
    TunnelType type;
    std::string localPort, remoteHost, remotePort;
    std::string flag, value;
};

class SshCommandForward : public testing::TestWithParam<ForwardRow> {};

TEST_P(SshCommandForward, GivesItsFlagAndValue) {
    auto tunnel = sample();
    const auto& row = GetParam();
    tunnel.tunnelType = row.type;
    tunnel.localPort = row.localPort;
    tunnel.remoteHost = row.remoteHost;
    tunnel.remotePort = row.remotePort;
    const auto arguments = buildSSHArguments(tunnel, {});
    const auto flag = std::ranges::find(arguments, row.flag);
    ASSERT_NE(flag, arguments.end());
    EXPECT_EQ(*(flag + 1), row.value);
    EXPECT_EQ(*(flag - 1), "ExitOnForwardFailure=yes");
}

INSTANTIATE_TEST_SUITE_P(
    AllTypes, SshCommandForward,
    testing::Values(
        ForwardRow{"Local", TunnelType::localForward, "8080", "db", "5432", "-L", "127.0.0.1:8080:db:5432"},
        ForwardRow{"LocalWithoutFarSide", TunnelType::localForward, "8080", "", "", "-L",
                   "127.0.0.1:8080:localhost:8080"},
        ForwardRow{"LocalKeepsBlanks", TunnelType::localForward, " 8080 ", "db", "80", "-L",
                   "127.0.0.1: 8080 :db:80"},
        ForwardRow{"Remote", TunnelType::remoteForward, "3000", "ignored", "9000", "-R", "9000:localhost:3000"},
        ForwardRow{"RemoteWithoutFarPort", TunnelType::remoteForward, "3000", "", "", "-R",
                   "3000:localhost:3000"},
        ForwardRow{"Socks", TunnelType::socks5, "1080", "ignored", "1", "-D", "127.0.0.1:1080"},
        ForwardRow{"Dynamic", TunnelType::dynamicForward, "1080", "ignored", "1", "-D", "127.0.0.1:1080"}),
    [](const auto& row) { return row.param.name; });

TEST(SshCommand, WithoutALocalPortThereIsNoForward) {
    for (const auto* port : {"", "  \t"}) {
        auto tunnel = sample();
        tunnel.localPort = port;
        const auto arguments = buildSSHArguments(tunnel, {});
        EXPECT_FALSE(hasOption(arguments, "ExitOnForwardFailure=yes"));
        EXPECT_FALSE(hasOption(arguments, "-L"));
    }
}

TEST(SshCommand, SocksAndDynamicForwardsAreTheSame) {
    auto socks = sample();
    socks.tunnelType = TunnelType::socks5;
    auto dynamic = socks;
    dynamic.tunnelType = TunnelType::dynamicForward;
    EXPECT_EQ(buildSSHArguments(socks, {}), buildSSHArguments(dynamic, {}));
}

TEST(SshCommand, TrimsThePortButNotTheJumpHost) {
    auto tunnel = sample();
    tunnel.sshPort = " 2222 ";
    tunnel.jumpHost = " bastion ";
    const auto arguments = buildSSHArguments(tunnel, {});
    EXPECT_EQ(after(arguments, "-p"), "2222");
    EXPECT_EQ(after(arguments, "-J"), " bastion ");
}

TEST(SshCommand, BlankPortAndBlankJumpHostAreLeftOut) {
    auto tunnel = sample();
    tunnel.sshPort = " \t ";
    tunnel.jumpHost = "  ";
    const auto arguments = buildSSHArguments(tunnel, {});
    EXPECT_FALSE(hasOption(arguments, "-p"));
    EXPECT_FALSE(hasOption(arguments, "-J"));
}

TEST(SshCommand, LineEndsAreNotTrimmed) {
    auto tunnel = sample();
    tunnel.sshPort = "2222\n";
    EXPECT_EQ(after(buildSSHArguments(tunnel, {}), "-p"), "2222\n");
}

TEST(SshCommand, KeyThatLeftTheListKeepsItsGroupButHasNoPath) {
    auto tunnel = sample();
    tunnel.identityKeyID = support::Uuid::random();
    const auto arguments = buildSSHArguments(tunnel, {});
    EXPECT_TRUE(hasOption(arguments, "BatchMode=yes"));
    EXPECT_FALSE(hasOption(arguments, "-i"));
}

TEST(SshCommand, KeyPathIsIgnoredByTheOtherMethods) {
    auto tunnel = sample();
    tunnel.identityKeyID = support::Uuid::random();
    tunnel.authMethod = AuthMethod::agent;
    EXPECT_FALSE(hasOption(buildSSHArguments(tunnel, {.path = "/keys/id"}), "-i"));
}

TEST(SshCommand, KeepAliveHasNoLowerBound) {
    auto tunnel = sample();
    tunnel.keepAliveInterval = 0;
    EXPECT_EQ(buildSSHArguments(tunnel, {})[2], "ServerAliveInterval=0");
    tunnel.keepAliveInterval = -7;
    EXPECT_EQ(buildSSHArguments(tunnel, {})[2], "ServerAliveInterval=-7");
}

TEST(SshCommand, EmptyHostAndUserStillGiveTheLastArgument) {
    auto tunnel = sample();
    tunnel.host = "";
    tunnel.user = "";
    EXPECT_EQ(buildSSHArguments(tunnel, {}).back(), "@");
}

TEST(SshCommand, PreviewShowsWhatWasTyped) {
    auto tunnel = sample();
    EXPECT_EQ(buildPreviewCommand(tunnel),
              "/usr/bin/ssh -N -p 22 -L 127.0.0.1:8080:localhost:80 ubuntu@example.com");
    tunnel.remoteHost = "";
    tunnel.remotePort = "";
    EXPECT_EQ(buildPreviewCommand(tunnel),
              "/usr/bin/ssh -N -p 22 -L 127.0.0.1:8080:localhost: ubuntu@example.com");
}

TEST(SshCommand, PreviewLeavesOutOptionsAndPutsTheJumpHostLast) {
    auto tunnel = sample();
    tunnel.tunnelType = TunnelType::remoteForward;
    tunnel.compression = true;
    tunnel.jumpHost = " bastion ";
    tunnel.sshPort = " 2222 ";
    tunnel.identityKeyID = support::Uuid::random();
    EXPECT_EQ(buildPreviewCommand(tunnel),
              "/usr/bin/ssh -N -p 2222 -R 80:localhost:8080 -J  bastion  ubuntu@example.com");
}

TEST(SshCommand, PreviewOfASocksProxy) {
    auto tunnel = sample();
    tunnel.tunnelType = TunnelType::socks5;
    tunnel.localPort = "1080";
    EXPECT_EQ(buildPreviewCommand(tunnel), "/usr/bin/ssh -N -p 22 -D 127.0.0.1:1080 ubuntu@example.com");
}

TEST(SshCommand, PreviewTestsEmptinessWithoutTrimming) {
    auto tunnel = sample();
    tunnel.tunnelType = TunnelType::dynamicForward;
    tunnel.localPort = " ";
    tunnel.jumpHost = " ";
    tunnel.sshPort = " ";
    EXPECT_EQ(buildPreviewCommand(tunnel), "/usr/bin/ssh -N -D 127.0.0.1:  -J   ubuntu@example.com");
    tunnel.localPort = "";
    EXPECT_EQ(buildPreviewCommand(tunnel), "/usr/bin/ssh -N -J   ubuntu@example.com");
}

} // namespace
} // namespace fernwick
