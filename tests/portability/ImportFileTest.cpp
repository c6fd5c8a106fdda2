#include "portability/FernwickSSHImporter.h"
#include "support/FakeClock.h"
#include "support/FakeFileSystem.h"
#include "support/FakePlatform.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fernwick::tests {

namespace {

constexpr std::string_view kInvalid = "File không hợp lệ hoặc không đúng định dạng .fernwick";

// A file whose second profile has every member that is known.
constexpr std::string_view kWhole =
    R"({"profiles":[{"uuid":"1","name":"first","address":"b","port":2,"user":"you","forwardings":[]},)"
    R"({"uuid":"u","name":"n","address":"a","port":22,"user":"me","privateKeyName":"k",)"
    R"("autoConnect":true,"retryAttempts":1,"forwardings":[{"uuid":"f","type":"local","bindAddress":"b",)"
    R"("bindPort":1,"hostAddress":"h","hostPort":2,"enabled":true}],"options":{"Compression":"yes"},)"
    R"("tags":["t"]}]})";

class ImportFileTest : public testing::Test {
protected:
    [[nodiscard]] FernwickSSHImporter importer() { return {dialogs_, files_, clock_}; }

    void importFile() {
        importer().importFile([this](const auto& result) { told_.push_back(result); });
    }
    // What is told about a file that holds the bytes.
    [[nodiscard]] FernwickSSHImporter::Result importing(const std::string& bytes) {
        files_.files["/in.fernwick"] = {bytes, 0600};
        importFile();
        dialogs_.answer("/in.fernwick");
        return told_.at(0);
    }

    fakes::FakeDispatch dispatch_;
    fakes::FakeClock clock_{dispatch_};
    fakes::FakeFileSystem files_;
    fakes::FakeDialogs dialogs_;
    std::vector<FernwickSSHImporter::Result> told_;
};

struct ChangeRow {
    const char* name;
    std::string from; // a place in the whole file
    std::string to;
    bool fits;
};

class ChangedFile : public ImportFileTest, public testing::WithParamInterface<ChangeRow> {};

struct BytesRow {
    const char* name;
    std::string bytes;
};

class RefusedFile : public ImportFileTest, public testing::WithParamInterface<BytesRow> {};

const auto kRowName = [](const auto& row) { return row.param.name; };

} // namespace

TEST_F(ImportFileTest, PanelAsksForOneFileOfTheKind) {
    importFile();
    ASSERT_EQ(dialogs_.requests.size(), 1U);
    const auto& request = dialogs_.requests[0];
    EXPECT_EQ(request.title, "Import from Fernwick SSH");
    EXPECT_EQ(request.message, "Chọn file .fernwick export từ Fernwick SSH");
    ASSERT_TRUE(request.kind);
    EXPECT_EQ(request.kind->extensions, (std::vector<std::string>{"fernwick", "json"}));
    EXPECT_TRUE(told_.empty());
}

TEST_F(ImportFileTest, ChosenFileIsTold) {
    const auto result = importing(std::string(kWhole));
    ASSERT_TRUE(result);
    ASSERT_EQ(result->size(), 2U);
    EXPECT_EQ(result->back().host, "a");
    EXPECT_EQ(told_.size(), 1U);
}

TEST_F(ImportFileTest, ImporterMayGoBeforeThePanelAnswers) {
    auto importer = std::make_unique<FernwickSSHImporter>(dialogs_, files_, clock_);
    files_.files["/in.fernwick"] = {std::string(kWhole), 0600};
    importer->importFile([this](const auto& result) { told_.push_back(result); });
    importer.reset();
    dialogs_.answer("/in.fernwick");
    ASSERT_EQ(told_.size(), 1U);
    EXPECT_TRUE(told_[0]);
}

TEST_F(ImportFileTest, DismissalIsCancelled) {
    importFile();
    dialogs_.answer(std::nullopt);
    ASSERT_EQ(told_.size(), 1U);
    ASSERT_FALSE(told_[0]);
    EXPECT_EQ(told_[0].error(), ImportError::cancelled());
    EXPECT_EQ(told_[0].error().description(), "Import cancelled");
}

TEST_F(ImportFileTest, FileThatCannotBeReadIsToldInTheSystemsWords) {
    importFile();
    dialogs_.answer("/missing.fernwick");
    ASSERT_FALSE(told_.at(0));
    EXPECT_EQ(told_[0].error(), ImportError::parseError("No such file or directory"));
    EXPECT_EQ(told_[0].error().kind(), ImportError::Case::parseError);
    EXPECT_EQ(told_[0].error().description(), "Parse error: No such file or directory");
}

TEST_F(ImportFileTest, NoUsableProfileIsNoError) {
    EXPECT_EQ(importing(R"({"profiles":[]})"), std::vector<Tunnel>());
    told_.clear();
    EXPECT_EQ(
        importing(R"({"profiles":[{"uuid":"","name":"","address":"","port":1,"user":"","forwardings":[]}]})"),
        std::vector<Tunnel>());
}

TEST_F(ImportFileTest, TenThousandProfilesKeepTheirOrder) {
    std::string json = R"({"profiles":[)";
    for (int number = 0; number < 10'000; ++number) {
        json += R"({"uuid":"","name":")" + std::to_string(number) +
                R"(","address":"a","port":22,"user":"u","forwardings":[]},)";
    }
    json.back() = ']';
    const auto result = importing(json + "}");
    ASSERT_TRUE(result);
    ASSERT_EQ(result->size(), 10'000U);
    EXPECT_EQ(result->front().name, "0");
    EXPECT_EQ(result->back().name, "9999");
}

TEST_P(ChangedFile, IsReadOrRefusedAsAWhole) {
    std::string json(kWhole);
    const auto at = json.rfind(GetParam().from); // in the second profile, where there are two
    ASSERT_NE(at, std::string::npos);
    json.replace(at, GetParam().from.size(), GetParam().to);
    const auto result = importing(json);
    EXPECT_EQ(result.has_value(), GetParam().fits);
    if (!result) {
        EXPECT_EQ(result.error(), ImportError::invalidFile());
        EXPECT_EQ(result.error().description(), kInvalid);
    }
}

INSTANTIATE_TEST_SUITE_P(Missing, ChangedFile,
                         testing::Values(ChangeRow{"Profiles", R"("profiles")", R"("others")", false},
                                         ChangeRow{"Uuid", R"("uuid":"u",)", "", false},
                                         ChangeRow{"Name", R"("name":"n",)", "", false},
                                         ChangeRow{"Address", R"("address":"a",)", "", false},
                                         ChangeRow{"Port", R"("port":22,)", "", false},
                                         ChangeRow{"User", R"("user":"me",)", "", false},
                                         ChangeRow{"Forwardings", R"("forwardings")", R"("forwarding")", false},
                                         ChangeRow{"ForwardingUuid", R"("uuid":"f",)", "", false},
                                         ChangeRow{"ForwardingType", R"("type":"local",)", "", false},
                                         ChangeRow{"KeyName", R"("privateKeyName":"k",)", "", true},
                                         ChangeRow{"AutoConnect", R"("autoConnect":true,)", "", true},
                                         ChangeRow{"RetryAttempts", R"("retryAttempts":1,)", "", true},
                                         ChangeRow{"Options", R"("options":{"Compression":"yes"},)", "", true},
                                         ChangeRow{"Tags", R"(,"tags":["t"])", "", true},
                                         ChangeRow{"BindAddress", R"("bindAddress":"b",)", "", true},
                                         ChangeRow{"BindPort", R"("bindPort":1,)", "", true},
                                         ChangeRow{"HostAddress", R"("hostAddress":"h",)", "", true},
                                         ChangeRow{"HostPort", R"("hostPort":2,)", "", true},
                                         ChangeRow{"Enabled", R"(,"enabled":true)", "", true}),
                         kRowName);

INSTANTIATE_TEST_SUITE_P(
    Null, ChangedFile,
    testing::Values(ChangeRow{"Profiles", R"({"profiles":[)", R"({"profiles":null,"others":[)", false},
                    ChangeRow{"Profile", R"({"uuid":"u")", R"(null,{"uuid":"u")", false},
                    ChangeRow{"Uuid", R"("u")", "null", false}, ChangeRow{"Name", R"("n")", "null", false},
                    ChangeRow{"Address", R"("a")", "null", false}, ChangeRow{"Port", "22", "null", false},
                    ChangeRow{"User", R"("me")", "null", false},
                    ChangeRow{"Forwarding", R"([{"uuid":"f")", R"([null,{"uuid":"f")", false},
                    ChangeRow{"Type", R"("local")", "null", false},
                    ChangeRow{"OptionValue", R"("yes")", "null", false},
                    ChangeRow{"Tag", R"("t")", "null", false}, ChangeRow{"KeyName", R"("k")", "null", true},
                    ChangeRow{"AutoConnect", R"("autoConnect":true)", R"("autoConnect":null)", true},
                    ChangeRow{"RetryAttempts", R"("retryAttempts":1)", R"("retryAttempts":null)", true},
                    ChangeRow{"Options", R"({"Compression":"yes"})", "null", true},
                    ChangeRow{"Tags", R"(["t"])", "null", true},
                    ChangeRow{"BindPort", R"("bindPort":1)", R"("bindPort":null)", true},
                    ChangeRow{"Enabled", R"("enabled":true)", R"("enabled":null)", true}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    Type, ChangedFile,
    testing::Values(ChangeRow{"ProfilesAsObject", R"({"profiles":[)", R"({"profiles":{},"others":[)", false},
                    ChangeRow{"Uuid", R"("u")", "1", false}, ChangeRow{"Name", R"("n")", "[]", false},
                    ChangeRow{"PortAsText", "22", R"("22")", false},
                    ChangeRow{"PortWithFraction", "22", "22.5", false},
                    ChangeRow{"PortAsReal", "22", "22.0", true},
                    ChangeRow{"PortTooLarge", "22", "9223372036854775808", false},
                    ChangeRow{"KeyName", R"("k")", "1", false},
                    ChangeRow{"AutoConnect", R"("autoConnect":true)", R"("autoConnect":1)", false},
                    ChangeRow{"RetryAttempts", R"("retryAttempts":1)", R"("retryAttempts":"1")", false},
                    ChangeRow{"Forwardings", R"("forwardings":[)", R"("forwardings":{},"others":[)", false},
                    ChangeRow{"BindAddress", R"("b")", "1", false},
                    ChangeRow{"BindPort", R"("bindPort":1)", R"("bindPort":"1")", false},
                    ChangeRow{"HostAddress", R"("h")", "false", false},
                    ChangeRow{"HostPort", R"("hostPort":2)", R"("hostPort":{})", false},
                    ChangeRow{"Enabled", R"("enabled":true)", R"("enabled":"true")", false},
                    ChangeRow{"Options", R"({"Compression":"yes"})", "[]", false},
                    ChangeRow{"OptionValue", R"("yes")", "true", false},
                    ChangeRow{"Tags", R"(["t"])", R"("t")", false}, ChangeRow{"Tag", R"("t")", "1", false}),
    kRowName);

INSTANTIATE_TEST_SUITE_P(
    Tolerated, ChangedFile,
    testing::Values(ChangeRow{"Unknown", R"({"profiles")", R"({"version":[{"profiles":1}],"profiles")", true},
                    ChangeRow{"UnknownInProfile", R"("name")", R"("colour":null,"name")", true},
                    ChangeRow{"KeyInOtherCase", R"("tags")", R"("TAGS")", true},
                    ChangeRow{"RequiredKeyInOtherCase", R"("user")", R"("User")", false},
                    ChangeRow{"Twice", R"("name":"n")", R"("name":"m","name":"n")", true},
                    ChangeRow{"TwiceAndOneUnfit", R"("name":"n")", R"("name":1,"name":"n")", false},
                    ChangeRow{"EmptyOptions", R"({"Compression":"yes"})", "{}", true}),
    kRowName);

TEST_P(RefusedFile, IsNoExport) {
    const auto result = importing(GetParam().bytes);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error(), ImportError::invalidFile());
}

INSTANTIATE_TEST_SUITE_P(Bytes, RefusedFile,
                         testing::Values(BytesRow{"Empty", ""}, BytesRow{"Blank", " \n"},
                                         BytesRow{"Words", "not json"}, BytesRow{"Null", "null"},
                                         BytesRow{"Text", R"("profiles")"}, BytesRow{"Array", "[]"},
                                         BytesRow{"ArrayAround", "[" + std::string(kWhole) + "]"},
                                         BytesRow{"NoMembers", "{}"},
                                         BytesRow{"CutShort", std::string(kWhole.substr(0, kWhole.size() - 1))},
                                         BytesRow{"MoreBehind", std::string(kWhole) + ","},
                                         BytesRow{"Twice", std::string(kWhole) + std::string(kWhole)},
                                         BytesRow{"TrailingComma", R"({"profiles":[],})"},
                                         BytesRow{"Comment", R"(/**/{"profiles":[]})"},
                                         BytesRow{"NoUtf8", "{\"profiles\":[],\"x\":\"\xff\"}"},
                                         BytesRow{"LoneSurrogate", R"({"profiles":[],"x":"\ud800"})"},
                                         BytesRow{"Nul", std::string("{\"profiles\":[]}\0", 16)},
                                         BytesRow{"Deep", std::string(100'000, '[')}),
                         kRowName);

} // namespace fernwick::tests
