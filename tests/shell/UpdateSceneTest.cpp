// The updater in its place: nothing before the first check, and the words of a check for who shows them.
#include "shell/UpdateScene.h"

#include "support/FakeCommandRunner.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeHttpClient.h"

#include <QApplication>
#include <QDialog>
#include <gtest/gtest.h>

#include <algorithm>

namespace fernwick::tests {
namespace {

class NoAdministrator final : public platform::AdministratorShell {
public:
    std::expected<void, platform::AdministratorError> run(const std::string& /*line*/) override { return {}; }
};

class UpdateSceneTest : public testing::Test {
protected:
    static int dialogs() {
        return static_cast<int>(std::ranges::count_if(QApplication::topLevelWidgets(), [](QWidget* widget) {
            return widget->isVisible() && qobject_cast<QDialog*>(widget) != nullptr;
        }));
    }

    fakes::FakeDispatch dispatch;
    fakes::FakeHttpClient http{dispatch};
    fakes::FakeFileSystem files;
    fakes::FakeCommandRunner commands;
    fakes::FakeHostEnvironment host;
    NoAdministrator administrator;
    Theme theme{*qApp, Appearance::light};
    std::vector<std::string> outcomes;
    UpdateScene scene{theme,
                      {dispatch, http, files, commands, administrator, host},
                      [this](const std::string& text) { outcomes.push_back(text); }};
};

TEST_F(UpdateSceneTest, AsksNobodyBeforeTheFirstCheck) {
    dispatch.runAll();
    EXPECT_TRUE(http.requests().empty());
    EXPECT_FALSE(scene.version().has_value()); // a test has no bundle
}

TEST_F(UpdateSceneTest, ACheckOfThePersonTellsInWordsAndByAnAlert) {
    http.answer(200, R"({"version":"v3.0.1","download_url":"https://maker.example/Fernwick.zip"})");
    scene.check(false);
    dispatch.runAll();
    ASSERT_EQ(http.requests().size(), 1U);
    EXPECT_TRUE(http.lines().front().ends_with("/api/update"));
    EXPECT_EQ(outcomes, std::vector<std::string>{"You are using the latest version (3.0.1)."});
    EXPECT_EQ(dialogs(), 1);
}

TEST_F(UpdateSceneTest, ASilentCheckThatFailsSaysNothing) {
    http.refuse();
    scene.check(true);
    dispatch.runAll();
    EXPECT_EQ(http.requests().size(), 1U);
    EXPECT_TRUE(outcomes.empty());
    EXPECT_EQ(dialogs(), 0);
}

TEST_F(UpdateSceneTest, WhatIsFoundIsAskedForInBothWays) {
    http.answer(200, R"({"version":"4","download_url":"https://maker.example/Fernwick.zip","notes":"n"})");
    scene.check(true);
    dispatch.runAll();
    EXPECT_EQ(dialogs(), 1);
    EXPECT_TRUE(outcomes.empty());
    scene.check(false);
    dispatch.runAll();
    EXPECT_EQ(dialogs(), 2);
    EXPECT_EQ(outcomes,
              std::vector<std::string>{"New version 4 is available.\n\nn\n\nWould you like to download "
                                       "and install it now?"});
}

} // namespace
} // namespace fernwick::tests
