#include "portability/FernwickSSHImporter.h"
#include "support/FakeClock.h"
#include "support/FakeFileSystem.h"
#include "support/FakePlatform.h"
#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace fernwick::tests {

namespace {

std::string golden(const std::string& name) {
    std::ifstream file(FERNWICK_PORTABILITY_GOLDEN "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class ImporterTest : public testing::Test {
protected:
    // The tunnel of a profile that is whole, after the change.
    template <class Change>
    [[nodiscard]] Tunnel tunnelOf(Change change) const {
        TarnlineProfile profile{.uuid = "0F8FAD5B-D9CB-469F-A165-70867728950E",
                                .name = "name",
                                .address = "host",
                                .port = 22,
                                .user = "user",
                                .privateKeyName = std::nullopt,
                                .autoConnect = std::nullopt,
                                .retryAttempts = std::nullopt,
                                .forwardings = {},
                                .options = std::nullopt,
                                .tags = std::nullopt};
        change(profile);
        return importer_.makeTunnel(profile).value_or(Tunnel{});
    }
    [[nodiscard]] Tunnel tunnelWith(const TarnlineForwarding& forwarding) const {
        return tunnelOf([&](auto& profile) { profile.forwardings = {forwarding}; });
    }
    [[nodiscard]] Tunnel tunnelWith(const char* option, const char* value) const {
        return tunnelOf([&](auto& profile) { profile.options.emplace().emplace(option, value); });
    }

    fakes::FakeDispatch dispatch_;
    fakes::FakeClock clock_{dispatch_};
    fakes::FakeFileSystem files_;
    fakes::FakeDialogs dialogs_;
    FernwickSSHImporter importer_{dialogs_, files_, clock_};
};

struct ForwardRow {
    const char* name;
    std::string type;
    TunnelType tunnelType;
    std::string remoteHost;
    std::string remotePort;
};

class ImporterForward : public ImporterTest, public testing::WithParamInterface<ForwardRow> {};

struct KeepAliveRow {
    const char* name;
    std::string text;
    std::int64_t seconds;
};

class ImporterKeepAlive : public ImporterTest, public testing::WithParamInterface<KeepAliveRow> {};

TarnlineForwarding forwarding(std::string type) {
    return {.uuid = "",
            .type = std::move(type),
            .bindAddress = "0.0.0.0",
            .bindPort = 8080,
            .hostAddress = "db",
            .hostPort = 5432,
            .enabled = std::nullopt};
}

} // namespace

TEST_F(ImporterTest, WholeFileBecomesTheKnownTunnels) {
    const auto tunnels = importer_.parse(golden("profiles.fernwick"));
    ASSERT_TRUE(tunnels);
    const auto json = golden("profiles.tunnels.json");
    EXPECT_EQ(*support::encodeList(*tunnels) + "\n", json);
    EXPECT_EQ(support::decodeList<Tunnel>(json), *tunnels);
}

TEST_F(ImporterTest, PlainProfileHasTheseFields) {
    const auto tunnel = tunnelOf([](auto&) {});
    Tunnel expected;
    expected.id = *support::Uuid::parse("0F8FAD5B-D9CB-469F-A165-70867728950E");
    expected.name = "name";
    expected.host = "host";
    expected.sshPort = "";
    expected.user = "user";
    expected.remoteHost = "localhost";
    expected.tunnelType = TunnelType::socks5;
    expected.authMethod = AuthMethod::password;
    expected.notes = "Imported from Fernwick SSH · key: none";
    expected.keepAliveInterval = 60;
    expected.reconnectOnFailure = false;
    expected.createdAt = clock_.now();
    EXPECT_EQ(tunnel, expected);
}

TEST_P(ImporterForward, TypeDecides) {
    const auto tunnel = tunnelWith(forwarding(GetParam().type));
    EXPECT_EQ(tunnel.tunnelType, GetParam().tunnelType);
    EXPECT_EQ(tunnel.localPort, "8080");
    EXPECT_EQ(tunnel.remoteHost, GetParam().remoteHost);
    EXPECT_EQ(tunnel.remotePort, GetParam().remotePort);
}

INSTANTIATE_TEST_SUITE_P(
    Types, ImporterForward,
    testing::Values(ForwardRow{"Local", "local", TunnelType::localForward, "db", "5432"},
                    ForwardRow{"LocalInCapitals", "LOCAL", TunnelType::localForward, "db", "5432"},
                    ForwardRow{"Remote", "Remote", TunnelType::remoteForward, "db", "5432"},
                    ForwardRow{"Dynamic", "dynamic", TunnelType::socks5, "localhost", ""},
                    ForwardRow{"Other", "tun", TunnelType::socks5, "localhost", ""},
                    ForwardRow{"Blank", " local", TunnelType::socks5, "localhost", ""},
                    ForwardRow{"Empty", "", TunnelType::socks5, "localhost", ""},
                    ForwardRow{"OtherScript", "lоcal", TunnelType::socks5, "localhost", ""}),
    [](const auto& row) { return row.param.name; });

TEST_F(ImporterTest, MissingPartsOfAForwardAreEmpty) {
    const auto tunnel = tunnelWith({.uuid = "",
                                    .type = "local",
                                    .bindAddress = std::nullopt,
                                    .bindPort = std::nullopt,
                                    .hostAddress = std::nullopt,
                                    .hostPort = std::nullopt,
                                    .enabled = true});
    EXPECT_EQ(tunnel.tunnelType, TunnelType::localForward);
    EXPECT_EQ(tunnel.localPort, "");
    EXPECT_EQ(tunnel.remoteHost, "localhost");
    EXPECT_EQ(tunnel.remotePort, "");
}

TEST_F(ImporterTest, FirstForwardThatIsSwitchedOnIsTaken) {
    auto off = forwarding("local");
    off.enabled = false;
    auto second = forwarding("remote");
    second.bindPort = 1;
    const auto tunnel =
        tunnelOf([&](auto& profile) { profile.forwardings = {off, second, forwarding("local")}; });
    EXPECT_EQ(tunnel.tunnelType, TunnelType::remoteForward);
    EXPECT_EQ(tunnel.localPort, "1");
}

TEST_F(ImporterTest, AllForwardsSwitchedOffMakeAnEmptyProxy) {
    auto off = forwarding("local");
    off.enabled = false;
    const auto tunnel = tunnelOf([&](auto& profile) { profile.forwardings = {off, off}; });
    EXPECT_EQ(tunnel.tunnelType, TunnelType::socks5);
    EXPECT_EQ(tunnel.localPort + tunnel.remotePort, "");
    EXPECT_EQ(tunnel.remoteHost, "localhost");
}

TEST_F(ImporterTest, PortOfSshIsLeftOut) {
    EXPECT_EQ(tunnelOf([](auto& profile) { profile.port = 22; }).sshPort, "");
    EXPECT_EQ(tunnelOf([](auto& profile) { profile.port = 2222; }).sshPort, "2222");
    EXPECT_EQ(tunnelOf([](auto& profile) { profile.port = 0; }).sshPort, "0");
    EXPECT_EQ(tunnelOf([](auto& profile) { profile.port = -22; }).sshPort, "-22");
}

TEST_F(ImporterTest, ProfileWithoutAddressOrUserIsDropped) {
    EXPECT_EQ(importer_.makeTunnel({.uuid = {},
                                    .name = "a",
                                    .address = "",
                                    .port = 22,
                                    .user = "u",
                                    .privateKeyName = {},
                                    .autoConnect = {},
                                    .retryAttempts = {},
                                    .forwardings = {},
                                    .options = {},
                                    .tags = {}}),
              std::nullopt);
    EXPECT_EQ(tunnelOf([](auto& profile) { profile.user = ""; }), Tunnel{});
    EXPECT_EQ(tunnelOf([](auto& profile) { profile.name = ""; }).host, "host");
}

TEST_F(ImporterTest, IdIsKeptOrNew) {
    const auto lower = tunnelOf([](auto& profile) { profile.uuid = "0f8fad5b-d9cb-469f-a165-70867728950e"; });
    EXPECT_EQ(lower.id.text(), "0F8FAD5B-D9CB-469F-A165-70867728950E");
    const auto first = tunnelOf([](auto& profile) { profile.uuid = "profile 1"; });
    const auto second = tunnelOf([](auto& profile) { profile.uuid = "profile 1"; });
    EXPECT_NE(first.id, second.id);
    EXPECT_NE(first.id, support::Uuid());
}

TEST_F(ImporterTest, KeyNameChoosesTheLoginAndStandsInTheNotes) {
    const auto named = tunnelOf([](auto& profile) { profile.privateKeyName = "id_rsa"; });
    EXPECT_EQ(named.authMethod, AuthMethod::privateKey);
    EXPECT_EQ(named.identityKeyID, std::nullopt);
    EXPECT_EQ(named.notes, "Imported from Fernwick SSH · key: id_rsa");
    const auto empty = tunnelOf([](auto& profile) { profile.privateKeyName = ""; });
    EXPECT_EQ(empty.authMethod, AuthMethod::password);
    EXPECT_EQ(empty.notes, "Imported from Fernwick SSH · key: ");
}

TEST_F(ImporterTest, ReconnectsWhenEitherSaysSo) {
    EXPECT_TRUE(tunnelOf([](auto& profile) { profile.autoConnect = true; }).reconnectOnFailure);
    EXPECT_TRUE(tunnelOf([](auto& profile) { profile.retryAttempts = 1; }).reconnectOnFailure);
    EXPECT_FALSE(tunnelOf([](auto& profile) { profile.retryAttempts = 0; }).reconnectOnFailure);
    EXPECT_FALSE(tunnelOf([](auto& profile) { profile.retryAttempts = -1; }).reconnectOnFailure);
    EXPECT_TRUE(tunnelOf([](auto& profile) {
                    profile.autoConnect = false;
                    profile.retryAttempts = 3;
                }).reconnectOnFailure);
}

TEST_P(ImporterKeepAlive, IsReadAsAnInteger) {
    EXPECT_EQ(tunnelWith("ServerAliveInterval", GetParam().text.c_str()).keepAliveInterval, GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, ImporterKeepAlive,
    testing::Values(KeepAliveRow{"Plain", "15", 15}, KeepAliveRow{"Plus", "+30", 30},
                    KeepAliveRow{"Minus", "-5", -5}, KeepAliveRow{"Zero", "0", 0},
                    KeepAliveRow{"Empty", "", 60}, KeepAliveRow{"Letters", "abc", 60},
                    KeepAliveRow{"Unit", "30s", 60}, KeepAliveRow{"Blank", " 30", 60},
                    KeepAliveRow{"LonePlus", "+", 60}, KeepAliveRow{"LoneMinus", "-", 60},
                    KeepAliveRow{"TwoSigns", "+-3", 60}, KeepAliveRow{"Fraction", "1.5", 60},
                    KeepAliveRow{"Largest", "9223372036854775807", std::numeric_limits<std::int64_t>::max()},
                    KeepAliveRow{"TooLarge", "9223372036854775808", 60}),
    [](const auto& row) { return row.param.name; });

TEST_F(ImporterTest, OptionsThatAreNotThereCountAsSixtySecondsAndNoCompression) {
    EXPECT_EQ(tunnelWith("serveraliveinterval", "5").keepAliveInterval, 60);
    EXPECT_FALSE(tunnelWith("compression", "yes").compression);
}

TEST_F(ImporterTest, CompressionIsOnlyEverSwitchedOnByYes) {
    for (const auto* text : {"yes", "YES", "Yes"}) {
        EXPECT_TRUE(tunnelWith("Compression", text).compression) << text;
    }
    for (const auto* text : {"true", "", "no", "yes ", "1"}) {
        EXPECT_FALSE(tunnelWith("Compression", text).compression) << text;
    }
}

} // namespace fernwick::tests
