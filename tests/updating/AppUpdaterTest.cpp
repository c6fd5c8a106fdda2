// The way from the agreement to the end of the application.
#include "UpdaterWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace fernwick {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = fakes::FakeDispatch::Record::Kind;

const std::string kNoApplication = "Valid app (.app) not found in the selected file.";

TEST(AppUpdater, DownloadShowsANoticeAndAsksOnce) {
    UpdaterWorld world;
    world.check(R"({"version":"4.0","download_url":"https://maker.example/f/Fernwick.zip?token=1"})");
    world.http.forget();
    world.http.stayAway();
    world.screens.answers.at(0)(true);
    world.dispatch.advance(59s);
    ASSERT_EQ(world.screens.notices.size(), 1U);
    EXPECT_EQ(world.screens.notices[0].message, "Downloading update...");
    EXPECT_EQ(world.screens.notices[0].informativeText,
              "Please wait while downloading from Cloud...\nApp will automatically restart when finished.");
    EXPECT_EQ(world.screens.notices[0].button, "Downloading...");
    ASSERT_EQ(world.http.requests().size(), 2U);
    const auto& request = world.http.requests()[1];
    EXPECT_EQ(request.method + " " + request.url, "GET https://maker.example/f/Fernwick.zip?token=1");
    EXPECT_EQ(request.timeLimit, 60s);
    EXPECT_TRUE(request.followsRedirects);
    EXPECT_THAT(world.screens.shown, ElementsAre("ask: Application Update", "progress: Downloading update..."));
}

TEST(AppUpdater, FailedDownloadClosesTheSheetsAndSaysWhyInBothModes) {
    for (const bool silent : {true, false}) {
        UpdaterWorld world;
        world.check(R"({"version":"4.0","download_url":"https://maker.example/F.zip"})", silent);
        world.http.forget();
        world.http.refuse();
        world.screens.answers.at(0)(true);
        world.dispatch.advance(1h);
        EXPECT_THAT(world.screens.shown,
                    ElementsAre("ask: Application Update", "progress: Downloading update...", "close sheets",
                                "error: Update Error: Download failed: Connection refused"));
        EXPECT_EQ(world.outcomes.size(), silent ? 0U : 1U) << "that is for checks only";
        EXPECT_THAT(world.terminations, IsEmpty());
        EXPECT_THAT(world.commands.requests(), IsEmpty());
    }
}

TEST(AppUpdater, UpdateIsUnpackedAndLeftToAScript) {
    UpdaterWorld world;
    world.update();
    EXPECT_THAT(world.screens.shown,
                ElementsAre("ask: Application Update", "progress: Downloading update...", "close sheets"));
    EXPECT_EQ(world.disk.files.at("/tmp/Fernwick.zip").bytes, "archive");
    const auto [path, script] = world.script();
    EXPECT_TRUE(std::regex_match(
        path, std::regex("/tmp/FernwickUpdate_[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}/update\\.sh")))
        << path;
    EXPECT_EQ(script.mode, 0755U);
    const auto folder = path.substr(0, path.rfind('/'));
    EXPECT_EQ(script.bytes, folder + "/Fernwick.app to /opt/Fernwick.app");
    EXPECT_TRUE(world.disk.folders.contains(folder));
    EXPECT_THAT(world.commands.lines(),
                ElementsAre("/usr/bin/unpack /tmp/Fernwick.zip " + folder,
                            "/bin/bash -c nohup \"" + path + "\" > /dev/null 2>&1 & disown"));
    EXPECT_THAT(world.system.started, IsEmpty());
}

TEST(AppUpdater, ApplicationEndsHalfASecondAfterTheScriptBegan) {
    UpdaterWorld world;
    world.update();
    world.dispatch.advance(499ms);
    EXPECT_THAT(world.terminations, IsEmpty());
    world.dispatch.advance(1ms);
    EXPECT_THAT(world.terminations, ElementsAre(500ms));
    world.dispatch.advance(1h);
    EXPECT_EQ(world.terminations.size(), 1U);
    EXPECT_TRUE(world.disk.files.contains("/tmp/Fernwick.zip")) << "neither the archive";
    EXPECT_NE(world.script().first, "") << "nor the working folder is removed";
}

TEST(AppUpdater, InstallationStaysOffTheMainThread) {
    UpdaterWorld world;
    world.dispatch.holdGlobal(true);
    world.update();
    EXPECT_THAT(world.commands.requests(), IsEmpty());
    EXPECT_FALSE(world.disk.files.contains("/tmp/Fernwick.zip"));
    EXPECT_EQ(world.dispatch.runGlobal(), 1U);
    EXPECT_EQ(world.commands.requests().size(), 2U);
}

TEST(AppUpdater, OlderArchiveGivesWay) {
    UpdaterWorld world;
    world.disk.files["/tmp/Fernwick.zip"] = {"older", 0600};
    world.update();
    EXPECT_EQ(world.disk.files.at("/tmp/Fernwick.zip").bytes, "archive");
    EXPECT_NE(world.script().first, "");
}

TEST(AppUpdater, ArchiveThatCannotBeMovedIsAnError) {
    UpdaterWorld world;
    world.disk.files["/tmp/Fernwick.zip"] = {"older", 0600};
    world.disk.undeletable.insert("/tmp/Fernwick.zip");
    world.update("https://maker.example/Fernwick.zip", true);
    EXPECT_THAT(world.errors(), ElementsAre("Failed to move zip file: File exists"));
    EXPECT_EQ(world.disk.files.size(), 1U) << "what was downloaded is gone";
    world.dispatch.advance(1h);
    EXPECT_THAT(world.terminations, IsEmpty());
}

struct NameRow {
    const char* name;
    const char* url;
    const char* archive;
    bool isUnpacked;
};

class ArchiveNames : public testing::TestWithParam<NameRow> {};

TEST_P(ArchiveNames, DecideWhetherItIsUnpacked) {
    UpdaterWorld world;
    world.update(GetParam().url);
    EXPECT_TRUE(world.disk.files.contains(GetParam().archive));
    const auto [path, script] = world.script();
    const auto source =
        GetParam().isUnpacked ? path.substr(0, path.rfind('/')) + "/Fernwick.app" : GetParam().archive;
    EXPECT_EQ(script.bytes, source + " to /opt/Fernwick.app");
    EXPECT_EQ(world.commands.requests().size(), GetParam().isUnpacked ? 2U : 1U);
}

INSTANTIATE_TEST_SUITE_P(
    All, ArchiveNames,
    testing::Values(NameRow{"Zip", "https://maker.example/F.zip", "/tmp/F.zip", true},
                    NameRow{"InAnyCase", "https://maker.example/F.ZiP", "/tmp/F.ZiP", true},
                    NameRow{"NoPath", "https://maker.example", "/tmp/Fernwick_Update.zip", true},
                    NameRow{"Root", "https://maker.example/", "/tmp/Fernwick_Update.zip", true},
                    NameRow{"AppImage", "https://maker.example/F.AppImage", "/tmp/F.AppImage", false},
                    NameRow{"NoExtension", "https://maker.example/latest", "/tmp/latest", false},
                    NameRow{"ZipIsNotTheLast", "https://maker.example/F.zip.exe", "/tmp/F.zip.exe", false},
                    NameRow{"DotFirst", "https://maker.example/.zip", "/tmp/.zip", false},
                    NameRow{"LeadsUpwards", "https://maker.example/..%2f..%2Fetc%2Fpasswd",
                            "/tmp/Fernwick_Update.zip", true},
                    NameRow{"Query", "https://maker.example/get?file=/F.exe", "/tmp/get", false}),
    [](const auto& row) { return row.param.name; });

struct InstallRow {
    const char* name;
    void (*trouble)(UpdaterWorld&);
    std::string message;
};

class InstallFailures : public testing::TestWithParam<InstallRow> {};

TEST_P(InstallFailures, AreToldInBothModesAndTheApplicationStays) {
    for (const bool silent : {true, false}) {
        UpdaterWorld world;
        GetParam().trouble(world);
        world.update("https://maker.example/Fernwick.zip", silent);
        world.dispatch.advance(1h);
        EXPECT_THAT(world.errors(), ElementsAre(GetParam().message));
        EXPECT_THAT(world.terminations, IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, InstallFailures,
    testing::Values(
        InstallRow{"WorkingFolder",
                   [](UpdaterWorld& world) {
                       world.disk.folderFailure = platform::FileError{28, "No space left on device"};
                   },
                   "Update Error: No space left on device"},
        InstallRow{"NoUnpacker", [](UpdaterWorld& world) { world.unpackable = false; },
                   "Update Error: No such file or directory"},
        InstallRow{"NothingInside", [](UpdaterWorld& world) { world.contents = {}; }, kNoApplication},
        InstallRow{"FolderAroundTheBundle", [](UpdaterWorld& world) { world.contents = {"Fernwick-4.0"}; },
                   kNoApplication},
        InstallRow{"OtherCase", [](UpdaterWorld& world) { world.contents = {"Fernwick.App", "app"}; },
                   kNoApplication},
        InstallRow{"Script",
                   [](UpdaterWorld& world) {
                       world.commands.setResponder([&world](const platform::CommandRequest& request) {
                           world.items.order[request.arguments.at(1)] = {"Fernwick.app"};
                           world.disk.writeFailure = platform::FileError{30, "Read-only file system"};
                           return platform::CommandResult{};
                       });
                   },
                   "Update Error: Read-only file system"},
        InstallRow{"NoBash",
                   [](UpdaterWorld& world) {
                       world.shell = std::unexpected(platform::LaunchError{13, "Permission denied"});
                   },
                   "Update Error: Permission denied"},
        InstallRow{"Refused",
                   [](UpdaterWorld& world) {
                       world.items.unwritable.insert("/opt");
                       world.system.refusal = "User canceled";
                   },
                   "Requires permission to update application: User canceled"}),
    [](const auto& row) { return row.param.name; });

TEST(AppUpdater, ListingThatFailsIsAnArchiveWithoutAnApplication) {
    UpdaterWorld world;
    world.commands.setResponder([&world](const platform::CommandRequest& request) {
        world.items.failures[request.arguments.at(1)] = platform::FileError{5, "Input/output error"};
        return platform::CommandResult{};
    });
    world.update();
    EXPECT_THAT(world.errors(), ElementsAre(kNoApplication));
}

TEST(AppUpdater, FirstApplicationCountsAndTheStatusOfTheUnpackingDoesNot) {
    UpdaterWorld world;
    world.unpacked = {.status = 1, .standardOutput = {}, .standardError = "truncated"};
    world.contents = {"README.txt", "Second.app", "First.app"};
    world.update();
    EXPECT_TRUE(world.script().second.bytes.ends_with("/Second.app to /opt/Fernwick.app"));
    EXPECT_THAT(world.errors(), IsEmpty());
}

TEST(AppUpdater, WhereThePersonMayNotWriteTheScriptRunsAsAdministrator) {
    for (const char* path : {"/opt", "/opt/Fernwick.app"}) {
        UpdaterWorld world;
        world.items.unwritable.insert(path);
        world.update();
        EXPECT_THAT(world.system.started, ElementsAre(world.script().first)) << path;
        EXPECT_TRUE(world.script().second.bytes.ends_with(" as administrator")) << path;
        EXPECT_EQ(world.commands.requests().size(), 1U) << "unpacking alone";
        world.dispatch.advance(500ms);
        EXPECT_THAT(world.terminations, ElementsAre(500ms));
    }
}

TEST(AppUpdater, ItemAtTheTopOfTheDiskHasTheRootAsItsFolder) {
    UpdaterWorld world;
    world.disk.folders.insert("/");
    world.bundle.item = "/Fernwick.AppImage";
    world.disk.files["/Fernwick.AppImage"] = {"", 0755};
    world.update();
    EXPECT_THAT(world.system.started, IsEmpty());
    world.items.unwritable.insert("/");
    world.update();
    EXPECT_EQ(world.system.started.size(), 1U);
}

TEST(AppUpdater, CheckDuringADownloadIsAnotherOne) {
    UpdaterWorld world;
    world.check(R"({"version":"4.0","download_url":"https://maker.example/F.zip"})");
    world.http.forget();
    world.http.stayAway();
    world.screens.answers.at(0)(true);
    world.dispatch.advance(10s);
    world.check(R"({"version":"4.0","download_url":"https://maker.example/F.zip"})");
    EXPECT_EQ(world.screens.prompts.size(), 2U);
    world.accept();
    world.dispatch.advance(500ms);
    EXPECT_EQ(world.terminations.size(), 1U);
    world.dispatch.advance(1h);
    EXPECT_THAT(world.errors(), ElementsAre("Download failed: The request timed out"));
}

TEST(AppUpdater, EndDuringTheInstallationIsNoOnesTrouble) {
    UpdaterWorld world;
    world.dispatch.holdGlobal(true);
    world.update();
    world.updater.reset();
    world.dispatch.holdGlobal(false);
    world.dispatch.advance(1h);
    EXPECT_THAT(world.terminations, IsEmpty());
    EXPECT_NE(world.script().first, "");
}

TEST(AppUpdater, AlertsComeBehindWhatIsOnTheMainQueue) {
    UpdaterWorld world;
    world.updater->showUpdateError("broken");
    world.updater->showUpdateInfo("Title", "all right");
    EXPECT_THAT(world.screens.shown, IsEmpty());
    world.dispatch.runMain();
    EXPECT_THAT(world.screens.shown, ElementsAre("error: Update Error: broken", "info: Title: all right"));
    world.updater->showUpdateError("too late");
    world.updater.reset();
    world.dispatch.runMain();
    EXPECT_EQ(world.screens.shown.size(), 2U);
}

} // namespace
} // namespace fernwick
