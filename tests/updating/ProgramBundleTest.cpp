// What counts as the application, and the version that it says of itself.
#include "platform/linux/ProgramBundle.h"

#include "platform/posix/PropertyListFile.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

namespace fernwick::platform {
namespace {

struct PathRow {
    const char* name;
    Environment environment; // "@" is the test's folder
    std::string program;
    std::string path;
};

class ProgramPaths : public testing::TestWithParam<PathRow> {};

std::string at(std::string text, const std::string& folder) {
    return text.starts_with('@') ? text.replace(0, 1, folder) : text;
}

TEST_P(ProgramPaths, LeadToWhatAnUpdateReplaces) {
    const fakes::TemporaryFolder folder;
    folder.write("Fernwick.AppImage", "");
    std::filesystem::create_directories(folder / "folder.AppImage");
    Environment environment;
    for (const auto& [name, value] : GetParam().environment) {
        environment[name] = at(value, folder.path());
    }
    const ProgramBundle bundle(environment, at(GetParam().program, folder.path()));
    EXPECT_EQ(bundle.path(), at(GetParam().path, folder.path()));
}

INSTANTIATE_TEST_SUITE_P(
    All, ProgramPaths,
    testing::Values(PathRow{"Folder", {}, "/opt/Fernwick.app/Fernwick", "/opt/Fernwick.app"},
                    PathRow{"DeepInAFolder", {}, "/opt/My.app/Contents/MacOS/Fernwick", "/opt/My.app"},
                    PathRow{"NearestFolder", {}, "/opt/a.app/b.app/Fernwick", "/opt/a.app/b.app"},
                    PathRow{"Alone", {}, "/usr/bin/Fernwick", "/usr/bin/Fernwick"},
                    PathRow{"NameOfTheProgramIsNoFolder", {}, "/usr/bin/Fernwick.app", "/usr/bin/Fernwick.app"},
                    PathRow{"CaseCounts", {}, "/opt/Fernwick.App/Fernwick", "/opt/Fernwick.App/Fernwick"},
                    PathRow{"AtTheTop", {}, "/Fernwick", "/Fernwick"},
                    PathRow{"AppImage",
                            {{"APPIMAGE", "@/Fernwick.AppImage"}, {"APPDIR", "/tmp/.mount_F"}},
                            "/tmp/.mount_F/Fernwick.app/Fernwick",
                            "@/Fernwick.AppImage"},
                    PathRow{"AppImageWithASlash",
                            {{"APPIMAGE", "@/Fernwick.AppImage"}, {"APPDIR", "/tmp/.mount_F/"}},
                            "/tmp/.mount_F/Fernwick",
                            "@/Fernwick.AppImage"},
                    PathRow{"AppImageOfTheTerminal",
                            {{"APPIMAGE", "@/Fernwick.AppImage"}, {"APPDIR", "/tmp/.mount_T"}},
                            "/opt/Fernwick.app/Fernwick",
                            "/opt/Fernwick.app"},
                    PathRow{"AppImageWithoutItsFolder",
                            {{"APPIMAGE", "@/Fernwick.AppImage"}},
                            "/opt/Fernwick.app/Fernwick",
                            "/opt/Fernwick.app"},
                    PathRow{"AppImageIsGone",
                            {{"APPIMAGE", "@/none.AppImage"}, {"APPDIR", "/tmp/.mount_F"}},
                            "/tmp/.mount_F/Fernwick",
                            "/tmp/.mount_F/Fernwick"},
                    PathRow{"AppImageIsAFolder",
                            {{"APPIMAGE", "@/folder.AppImage"}, {"APPDIR", "/tmp/.mount_F"}},
                            "/tmp/.mount_F/Fernwick",
                            "/tmp/.mount_F/Fernwick"},
                    PathRow{"AppImageIsNoAbsolutePath",
                            {{"APPIMAGE", "Fernwick.AppImage"}, {"APPDIR", "/tmp/.mount_F"}},
                            "/tmp/.mount_F/Fernwick",
                            "/tmp/.mount_F/Fernwick"}),
    [](const auto& row) { return row.param.name; });

TEST(ProgramBundle, RunningProgramIsThisOne) {
    EXPECT_TRUE(runningProgram().ends_with("/fernwick_updating_tests")) << runningProgram();
}

struct VersionRow {
    const char* name;
    const char* list; // of Info.plist; null: there is none
    std::optional<std::string> version;
};

class BundleVersions : public testing::TestWithParam<VersionRow> {};

TEST_P(BundleVersions, AreTextsOrNothing) {
    const fakes::TemporaryFolder folder;
    if (GetParam().list != nullptr) {
        folder.write("Info.plist", GetParam().list);
    }
    EXPECT_EQ(ProgramBundle({}, folder / "Fernwick").version(), GetParam().version);
}

INSTANTIATE_TEST_SUITE_P(
    All, BundleVersions,
    testing::Values(
        VersionRow{"Text",
                   "<plist><dict><key>CFBundleShortVersionString</key><string>3.1.0</string></dict></plist>",
                   "3.1.0"},
        VersionRow{"Empty",
                   "<plist><dict><key>CFBundleShortVersionString</key><string></string></dict></plist>", ""},
        VersionRow{"Number",
                   "<plist><dict><key>CFBundleShortVersionString</key><real>3.1</real></dict></plist>",
                   std::nullopt},
        VersionRow{"OtherKey", "<plist><dict><key>CFBundleVersion</key><string>3.1.0</string></dict></plist>",
                   std::nullopt},
        VersionRow{"Array", "<plist><array><string>3.1.0</string></array></plist>", std::nullopt},
        VersionRow{"Garbage", "3.1.0", std::nullopt}, VersionRow{"NoBytes", "", std::nullopt},
        VersionRow{"NoFile", nullptr, std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(ProgramBundle, HugeFileIsNotRead) {
    const fakes::TemporaryFolder folder;
    folder.write("Info.plist",
                 "<plist><dict><key>CFBundleShortVersionString</key><string>3.1.0</string></dict></plist>" +
                     std::string(2U << 20U, ' '));
    EXPECT_EQ(ProgramBundle({}, folder / "Fernwick").version(), std::nullopt);
}

TEST(ProgramBundle, ListOfThisBuildIsWhole) {
    std::ifstream file(FERNWICK_INFO_PLIST);
    const auto list = parsePropertyList(std::string(std::istreambuf_iterator<char>(file), {}));
    ASSERT_TRUE(list);
    const auto& found = *list->as<PropertyDictionary>();
    const std::vector<std::pair<const char*, PropertyValue>> wanted{
        {"CFBundleIdentifier", {std::string("com.fernwick.Fernwick")}},
        {"CFBundleName", {std::string("Fernwick")}},
        {"CFBundleExecutable", {std::string("Fernwick")}},
        {"CFBundlePackageType", {std::string("APPL")}},
        {"CFBundleShortVersionString", {std::string(FERNWICK_VERSION)}},
        {"CFBundleVersion", {std::string(FERNWICK_VERSION)}},
        {"LSUIElement", {false}}, // it has an icon in the Dock
        {"NSHighResolutionCapable", {true}}};
    for (const auto& [key, value] : wanted) {
        ASSERT_TRUE(found.contains(key)) << key;
        EXPECT_TRUE(found.find(key)->second == value) << key;
    }
}

} // namespace
} // namespace fernwick::platform
