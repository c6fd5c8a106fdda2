// The check and the prompt: what is asked, compared, shown and told.
#include "UpdaterWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kUpdate =
    R"({"version":"v4.0","download_url":"https://maker.example/Fernwick.zip","notes":"Faster.\nSafer."})";

TEST(AppUpdater, PortalIsTheServerOfTheBuildWithAPath) {
    const UpdaterWorld world;
    EXPECT_EQ(world.updater->portalURL(), "https://update.fernwick.invalid/api/update");
}

TEST(AppUpdater, PortalOfTheEnvironmentGoesFirst) {
    UpdaterWorld world;
    const std::vector<std::pair<const char*, const char*>> rows{
        {"http://127.0.0.1:8080", "http://127.0.0.1:8080/api/update"},
        {"https://updates.example/", "https://updates.example/api/update"},
        {"", "https://update.fernwick.invalid/api/update"},
    };
    for (const auto& [given, portal] : rows) {
        world.host.environment["FERNWICK_UPDATE_URL"] = given;
        world.remake();
        EXPECT_EQ(world.updater->portalURL(), portal);
    }
}

TEST(AppUpdater, CheckWithAnImpossiblePortalDoesNothing) {
    UpdaterWorld world;
    world.host.environment["FERNWICK_UPDATE_URL"] = "http://not a host";
    world.remake();
    world.updater->checkForUpdates(false);
    world.dispatch.advance(1h);
    EXPECT_THAT(world.http.requests(), IsEmpty());
    EXPECT_THAT(world.screens.shown, IsEmpty());
    EXPECT_THAT(world.outcomes, IsEmpty());
}

TEST(AppUpdater, RequestIsAPlainGetPastEveryCache) {
    UpdaterWorld world;
    world.check("{}");
    ASSERT_THAT(world.http.lines(), ElementsAre("GET https://update.fernwick.invalid/api/update"));
    const auto& request = world.http.requests()[0];
    EXPECT_EQ(request.body, "");
    EXPECT_EQ(request.timeLimit, 60s);
    EXPECT_TRUE(request.followsRedirects);
    EXPECT_THAT(request.headers, testing::Contains(testing::Pair("Cache-Control", "no-cache")));
}

struct FailureRow {
    const char* name;
    fakes::FakeHttpClient::Answer answer;
    testing::Matcher<std::string> message;
};

platform::HttpResponse ok(const char* body) {
    return {200, body};
}

class CheckFailures : public testing::TestWithParam<FailureRow> {};

TEST_P(CheckFailures, AreToldOnlyToWhoAsked) {
    for (const bool silent : {true, false}) {
        UpdaterWorld world;
        world.http.answer(GetParam().answer);
        world.updater->checkForUpdates(silent);
        world.dispatch.advance(61s);
        if (silent) {
            EXPECT_THAT(world.screens.shown, IsEmpty());
            EXPECT_THAT(world.outcomes, IsEmpty());
        } else {
            EXPECT_THAT(world.errors(), ElementsAre(GetParam().message));
            EXPECT_THAT(world.outcomes, ElementsAre(GetParam().message));
            EXPECT_EQ(world.screens.shown.size(), 1U);
        }
        EXPECT_THAT(world.terminations, IsEmpty());
    }
}

constexpr const char* kInvalid = "Invalid JSON from Update Server.";
// The reason is the parser's.
const testing::Matcher<std::string> kNoJson = testing::MatchesRegex("Update check error: .+");

INSTANTIATE_TEST_SUITE_P(
    All, CheckFailures,
    testing::Values(
        FailureRow{"Refused",
                   {std::unexpected(platform::HttpError{"Connection refused"})},
                   "Network error: Connection refused"},
        FailureRow{"Silence", {std::nullopt}, "Network error: The request timed out"},
        FailureRow{"WithoutAText", {std::unexpected(platform::HttpError{""})}, "Network error: "},
        FailureRow{"NoBody", {ok("")}, kNoJson}, FailureRow{"WebPage", {ok("<html></html>")}, kNoJson},
        FailureRow{"WebPageOfAnError", {platform::HttpResponse{502, "<h1>Bad Gateway</h1>"}}, kNoJson},
        FailureRow{"CutShort", {ok(R"({"version":"4.0")")}, kNoJson},
        FailureRow{"GoesOn", {ok(R"({} {})")}, kNoJson}, FailureRow{"Array", {ok("[]")}, kInvalid},
        FailureRow{"Text", {ok(R"("4.0")")}, kInvalid}, FailureRow{"Number", {ok("4")}, kInvalid},
        FailureRow{"EmptyObject", {ok("{}")}, kInvalid},
        FailureRow{"NoVersion", {ok(R"({"download_url":"https://maker.example/F.zip"})")}, kInvalid},
        FailureRow{"NoUrl", {ok(R"({"version":"4.0"})")}, kInvalid},
        FailureRow{"VersionIsANumber",
                   {ok(R"({"version":4.0,"download_url":"https://maker.example/F.zip"})")},
                   kInvalid},
        FailureRow{"VersionIsNull",
                   {ok(R"({"version":null,"download_url":"https://maker.example/F.zip"})")},
                   kInvalid},
        FailureRow{"UrlIsAList",
                   {ok(R"({"version":"4.0","download_url":["https://maker.example/F.zip"]})")},
                   kInvalid},
        FailureRow{"UrlIsEmpty", {ok(R"({"version":"4.0","download_url":""})")}, kInvalid},
        FailureRow{"UrlWithABlank",
                   {ok(R"({"version":"4.0","download_url":"https://maker.example/a b.zip"})")},
                   kInvalid},
        FailureRow{"SameVersionButInvalidUrl", {ok(R"({"version":"3.1.0","download_url":"%"})")}, kInvalid}),
    [](const auto& row) { return row.param.name; });

struct VersionRow {
    const char* name;
    std::optional<std::string> current;
    const char* announced;
    bool prompts;
};

class Versions : public testing::TestWithParam<VersionRow> {};

TEST_P(Versions, AreTheSameTextOrNot) {
    for (const bool silent : {true, false}) {
        UpdaterWorld world;
        world.bundle.shortVersion = GetParam().current;
        world.check(std::string(R"({"download_url":"https://maker.example/F.zip","version":")") +
                        GetParam().announced + "\"}",
                    silent);
        EXPECT_EQ(world.screens.prompts.size(), GetParam().prompts ? 1U : 0U);
        EXPECT_EQ(world.outcomes.size(), silent ? 0U : 1U);
        if (GetParam().prompts || silent) {
            EXPECT_EQ(world.screens.shown.size(), GetParam().prompts ? 1U : 0U);
            continue;
        }
        const auto text = "You are using the latest version (" + GetParam().current.value_or("3.0.1") + ").";
        EXPECT_THAT(world.screens.shown, ElementsAre("info: Application Update: " + text));
        EXPECT_THAT(world.outcomes, ElementsAre(text));
    }
}

INSTANTIATE_TEST_SUITE_P(All, Versions,
                         testing::Values(VersionRow{"Same", "3.1.0", "3.1.0", false},
                                         VersionRow{"SameWithTheLetter", "3.1.0", "v3.1.0", false},
                                         VersionRow{"LettersAnywhere", "3.1.0", "3v.1.0vv", false},
                                         VersionRow{"Newer", "3.1.0", "v3.2.0", true},
                                         VersionRow{"Older", "3.1.0", "2.0", true},
                                         VersionRow{"Blank", "3.1.0", "3.1.0 ", true},
                                         VersionRow{"OtherNotation", "3.1.0", "3.1", true},
                                         VersionRow{"CapitalLetterStays", "3.1.0", "V3.1.0", true},
                                         VersionRow{"Empty", "3.1.0", "", true},
                                         VersionRow{"LetterInAWordGoesToo", "1.0-de", "1.0-dev", false},
                                         VersionRow{"LetterOfOursStays", "1.0-dev", "1.0-dev", true},
                                         VersionRow{"UnknownBundle", std::nullopt, "v3.0.1", false},
                                         VersionRow{"UnknownBundleOther", std::nullopt, "3.1.0", true}),
                         [](const auto& row) { return row.param.name; });

TEST(AppUpdater, PromptShowsTheVersionAsWrittenAndTheNotes) {
    UpdaterWorld world;
    world.check(kUpdate);
    ASSERT_EQ(world.screens.prompts.size(), 1U);
    const auto& prompt = world.screens.prompts[0];
    EXPECT_EQ(prompt.message, "Application Update");
    EXPECT_EQ(prompt.informativeText, "New version v4.0 is available.\n\nFaster.\nSafer.\n\n"
                                      "Would you like to download and install it now?");
    EXPECT_EQ(prompt.acceptButton, "Update Now");
    EXPECT_EQ(prompt.laterButton, "Later");
    EXPECT_THAT(world.outcomes, ElementsAre(prompt.informativeText));
}

TEST(AppUpdater, NotesThatAreMissingOrNoTextAreEmpty) {
    for (const char* notes : {"", R"(,"notes":["a"])", R"(,"notes":null)", R"(,"notes":"")"}) {
        UpdaterWorld world;
        world.check(R"({"version":"4.0","download_url":"https://maker.example/F.zip")" + std::string(notes) +
                    "}");
        ASSERT_EQ(world.screens.prompts.size(), 1U) << notes;
        EXPECT_EQ(world.screens.prompts[0].informativeText,
                  "New version 4.0 is available.\n\n\n\nWould you like to download and install it now?");
    }
}

TEST(AppUpdater, HostileNotesReachTheScreensAsTheyAre) {
    UpdaterWorld world;
    const std::string notes = R"(<b>bold</b>\u0000\u001b[31m\u202e%s)" + std::string(5'000'000, 'x');
    world.check(R"({"version":"<i>4</i>","download_url":"https://maker.example/F.zip","notes":")" + notes +
                "\"}");
    ASSERT_EQ(world.screens.prompts.size(), 1U);
    const auto& text = world.screens.prompts[0].informativeText;
    EXPECT_TRUE(
        text.starts_with("New version <i>4</i> is available.\n\n<b>bold</b>" + std::string("\0\x1b[31m", 6)));
    EXPECT_GT(text.size(), 5'000'000U);
}

TEST(AppUpdater, LaterEndsTheMatterAndTheNextCheckAsksAgain) {
    UpdaterWorld world;
    world.check(kUpdate, true);
    world.screens.answers.at(0)(false);
    world.dispatch.advance(1h);
    EXPECT_THAT(world.screens.shown, ElementsAre("ask: Application Update"));
    EXPECT_EQ(world.http.requests().size(), 1U);
    EXPECT_THAT(world.outcomes, IsEmpty());
    world.check(kUpdate, true);
    EXPECT_EQ(world.screens.prompts.size(), 2U);
}

TEST(AppUpdater, AnswersThatComeAfterItsEndAreNobodys) {
    UpdaterWorld world;
    world.check(kUpdate);
    world.updater->checkForUpdates(false);
    world.updater.reset();
    world.screens.answers.at(0)(true);
    world.dispatch.advance(1h);
    EXPECT_THAT(world.screens.shown, ElementsAre("ask: Application Update"));
    EXPECT_EQ(world.http.requests().size(), 2U);
}

TEST(AppUpdater, ChecksAreNotGuardedAgainstEachOther) {
    UpdaterWorld world;
    world.http.answer(200, kUpdate);
    world.updater->checkForUpdates(true);
    world.updater->checkForUpdates(false);
    world.dispatch.advance(0ms);
    EXPECT_EQ(world.screens.prompts.size(), 2U);
    EXPECT_EQ(world.outcomes.size(), 1U);
}

TEST(AppUpdater, OutcomeMayBeNobodysBusiness) {
    UpdaterWorld world;
    world.updater->outcome = nullptr;
    world.check("{}");
    EXPECT_THAT(world.errors(), ElementsAre(kInvalid));
}

} // namespace
} // namespace fernwick
