#include "catalogue/LogEntry.h"
#include "catalogue/Tunnel.h"
#include "catalogue/TunnelStatus.h"
#include "support/RecordHash.h"
#include "support/RecordReader.h"
#include "support/RecordWriter.h"

#include <gtest/gtest.h>

namespace fernwick {
namespace {

using support::decodeList;
using support::encodeList;

constexpr const char* kMinimal =
    R"({"id":"11111111-2222-3333-4444-AAAAAAAAAAAA","name":"N","host":"H","sshPort":"22","user":"U",)"
    R"("localPort":"8080","remotePort":"","remoteHost":"localhost","tunnelType":"Local Forward",)"
    R"("authMethod":"Private Key","tagIDs":[],"notes":"","keepAliveInterval":60,"reconnectOnFailure":true,)"
    R"("compression":false,"jumpHost":"","createdAt":0})";

Tunnel minimal() {
    Tunnel tunnel;
    tunnel.id = *support::Uuid::parse("11111111-2222-3333-4444-AAAAAAAAAAAA");
    tunnel.name = "N";
    tunnel.host = "H";
    tunnel.user = "U";
    tunnel.localPort = "8080";
    return tunnel;
}

std::string list(std::string_view object) {
    return "[" + std::string(object) + "]";
}

// The minimal object with `from` replaced by `to`.
std::string edited(const std::string& from, const std::string& to) {
    std::string object = kMinimal;
    object.replace(object.find(from), from.size(), to);
    return list(object);
}

TEST(TunnelCoding, AbsentOptionalsHaveNoKeyAndComeBackEqual) {
    const auto json = encodeList(std::vector{minimal()});
    ASSERT_TRUE(json);
    EXPECT_EQ(*json, list(kMinimal));
    EXPECT_EQ(decodeList<Tunnel>(*json), std::vector{minimal()});
}

TEST(TunnelCoding, AllNineteenKeysStandInTheOrderOfTheFields) {
    auto tunnel = minimal();
    tunnel.identityKeyID = support::Uuid{};
    tunnel.tagIDs = {support::Uuid{}};
    tunnel.lastConnectedAt = support::Date{1.5};
    EXPECT_EQ(
        encodeList(std::vector{tunnel}),
        R"([{"id":"11111111-2222-3333-4444-AAAAAAAAAAAA","name":"N","host":"H","sshPort":"22","user":"U",)"
        R"("localPort":"8080","remotePort":"","remoteHost":"localhost","tunnelType":"Local Forward",)"
        R"("authMethod":"Private Key","identityKeyID":"00000000-0000-0000-0000-000000000000",)"
        R"("tagIDs":["00000000-0000-0000-0000-000000000000"],"notes":"","keepAliveInterval":60,)"
        R"("reconnectOnFailure":true,"compression":false,"jumpHost":"","createdAt":0,"lastConnectedAt":1.5}])");
}

TEST(TunnelCoding, OneIncompleteObjectFailsTheWholeList) {
    std::string incomplete = kMinimal;
    incomplete.replace(incomplete.find(R"("notes":"",)"), 11, "");
    EXPECT_FALSE(decodeList<Tunnel>("[" + std::string(kMinimal) + "," + incomplete + "]"));
}

struct RejectedRow {
    std::string name, from, to;
};

class TunnelCodingRejects : public testing::TestWithParam<RejectedRow> {};

TEST_P(TunnelCodingRejects, TheWholeList) {
    EXPECT_FALSE(decodeList<Tunnel>(edited(GetParam().from, GetParam().to)));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TunnelCodingRejects,
    testing::Values(RejectedRow{"RawTextOfTheCaseName", "Local Forward", "socks5"},
                    RejectedRow{"RawTextInAnotherLetterCase", "Local Forward", "local forward"},
                    RejectedRow{"UnknownAuthMethod", "Private Key", "Key"},
                    RejectedRow{"MalformedUuid", "11111111-2222", "1111111-2222"},
                    RejectedRow{"PortAsNumber", R"("sshPort":"22")", R"("sshPort":22)"},
                    RejectedRow{"KeepAliveAsText", R"("keepAliveInterval":60)", R"("keepAliveInterval":"60")"},
                    RejectedRow{"FlagAsNumber", R"("compression":false)", R"("compression":0)"},
                    RejectedRow{"NullForARequiredKey", R"("notes":"")", R"("notes":null)"},
                    RejectedRow{"DateAsText", R"("createdAt":0)", R"("createdAt":"2001-01-01")"},
                    RejectedRow{"WrongTypeOfAnOptional", R"("notes":"")", R"("notes":"","identityKeyID":7)"},
                    RejectedRow{"JumpHostMissing", R"("jumpHost":"",)", ""}),
    [](const auto& row) { return row.param.name; });

TEST(TunnelCoding, RawTextsAreReadExactly) {
    const auto decoded = decodeList<Tunnel>(edited("Local Forward", "SOCKS5 Proxy"));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->front().tunnelType, TunnelType::socks5);
}

TEST(TunnelCoding, NullForAnOptionalIsAbsentAndUnknownKeysAreIgnored) {
    const auto decoded = decodeList<Tunnel>(
        edited(R"("notes":"")", R"("notes":"","identityKeyID":null,"lastConnectedAt":null,"x":[1])"));
    EXPECT_EQ(decoded, std::vector{minimal()});
}

TEST(TunnelCoding, UuidsAreReadInEitherCase) {
    EXPECT_EQ(decodeList<Tunnel>(edited("AAAAAAAAAAAA", "aaaaaaaaaaaa")), std::vector{minimal()});
}

TEST(TunnelCoding, RawTextsAreOfferedInTheirOrder) {
    std::vector<std::string_view> types;
    for (const auto& entry : rawTexts(TunnelType{})) {
        types.push_back(entry.text);
    }
    EXPECT_EQ(types, (std::vector<std::string_view>{"Local Forward", "Remote Forward", "SOCKS5 Proxy",
                                                    "Dynamic Forward"}));
    std::vector<std::string_view> methods;
    for (const auto& entry : rawTexts(AuthMethod{})) {
        methods.push_back(entry.text);
    }
    EXPECT_EQ(methods, (std::vector<std::string_view>{"Password", "Private Key", "SSH Agent"}));
}

TEST(Tunnel, DifferingOnlyInTheLastConnectionIsDiffering) {
    auto other = minimal();
    other.lastConnectedAt = support::Date{1.0};
    EXPECT_NE(minimal(), other);
    EXPECT_NE(support::hashOf(minimal()), support::hashOf(other));
    EXPECT_EQ(support::hashOf(minimal()), support::hashOf(minimal()));
}

TEST(TunnelStatus, ErrorsAreEqualByTheirMessage) {
    EXPECT_EQ(TunnelStatus::error("x"), TunnelStatus::error("x"));
    EXPECT_NE(TunnelStatus::error("x"), TunnelStatus::error("y"));
    EXPECT_FALSE(TunnelStatus::error("x").isActive());
    EXPECT_FALSE(TunnelStatus::error("y").isActive());
}

TEST(TunnelStatus, TextAndActivityByCase) {
    const std::vector<std::tuple<TunnelStatus, std::string, bool>> rows{
        {TunnelStatus::idle(), "Idle", false},
        {TunnelStatus::connecting(), "Connecting...", true},
        {TunnelStatus::connected(), "Connected", true},
        {TunnelStatus::disconnected(), "Disconnected", false},
        {TunnelStatus::error("no route"), "Error: no route", false}};
    for (const auto& [status, text, active] : rows) {
        EXPECT_EQ(status.statusText(), text);
        EXPECT_EQ(status.isActive(), active) << text;
    }
}

} // namespace
} // namespace fernwick
