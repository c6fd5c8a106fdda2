#include "platform/linux/DesktopProxySettings.h"
#include "support/FakeCommandRunner.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"

#include <gmock/gmock.h>

#include <csignal>

namespace fernwick::platform {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Answer = fakes::FakeCommandRunner::Answer;
using Arguments = std::vector<std::string>;

constexpr auto kSettings = "/usr/bin/gsettings";
constexpr auto kURL = "http://127.0.0.1:8899/proxy.pac";

// Settings on a machine whose commands are answered from a script.
class DesktopProxyTest : public testing::Test {
protected:
    // From now on reading gives `mode` for GNOME's mode and `type` for KDE's ProxyType.
    void answerModes(const std::string& mode, const std::string& type = "") {
        runner_.setResponder([=](const CommandRequest& request) -> Answer {
            if (request.executable == kSettings && request.arguments[0] == "get") {
                return CommandResult{0, request.arguments[2] == "mode" ? mode : "'" + std::string(kURL) + "'\n",
                                     ""};
            }
            if (request.executable.starts_with("/usr/bin/kreadconfig")) {
                return CommandResult{
                    0, (request.arguments.back() == "ProxyType" ? type : std::string(kURL)) + "\n", ""};
            }
            return CommandResult{};
        });
    }
    void haveKde(const std::string& generation) { files_.files["/usr/bin/kwriteconfig" + generation] = {}; }
    [[nodiscard]] DesktopProxySettings settings() { return {runner_, host_, files_}; }

    fakes::FakeCommandRunner runner_;
    fakes::FakeHostEnvironment host_;
    fakes::FakeFileSystem files_;
};

struct Leaving {
    const char* name;
    const char* gnomeMode;
    const char* kdeType;
    bool autoOffWrites;
    bool manualOffWrites;
};

class DesktopProxyLeaving : public DesktopProxyTest, public testing::WithParamInterface<Leaving> {
protected:
    // Whether the change, made on both desktops, writes on GNOME and on KDE; they agree.
    template <class Change>
    bool writes(const Change& change) {
        answerModes(GetParam().gnomeMode, GetParam().kdeType);
        haveKde("5");
        const auto before = runner_.lines().size();
        auto both = settings();
        change(both, "GNOME");
        change(both, "KDE");
        int written = 0;
        const auto lines = runner_.lines();
        for (auto at = before; at < lines.size(); ++at) {
            written += lines[at] == "/usr/bin/gsettings set org.gnome.system.proxy mode 'none'" ? 1 : 0;
            written += lines[at].starts_with("/usr/bin/kwriteconfig5") && lines[at].ends_with(" 0") ? 1 : 0;
        }
        EXPECT_NE(written, 1);
        return written == 2;
    }
};

struct Quoting {
    const char* name;
    const char* printed;
    std::optional<std::string> text;
};

class PrintedVariant : public testing::TestWithParam<Quoting> {};

} // namespace

TEST_F(DesktopProxyTest, GnomeSetsItsKeysByTheseCommands) {
    auto desktop = settings();
    desktop.setAutoProxyURL("GNOME", kURL);
    desktop.setAutoProxyState("GNOME", true);
    const auto requests = runner_.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].executable, kSettings);
    EXPECT_EQ(requests[0].arguments, Arguments({"set", "org.gnome.system.proxy", "autoconfig-url",
                                                "'http://127.0.0.1:8899/proxy.pac'"}));
    EXPECT_EQ(requests[1].executable, kSettings);
    EXPECT_EQ(requests[1].arguments, Arguments({"set", "org.gnome.system.proxy", "mode", "'auto'"}));
}

TEST_F(DesktopProxyTest, GnomeOffLooksAtTheModeFirst) {
    answerModes("'auto'\n");
    settings().setAutoProxyState("GNOME", false);
    EXPECT_THAT(runner_.lines(), ElementsAre("/usr/bin/gsettings get org.gnome.system.proxy mode",
                                             "/usr/bin/gsettings set org.gnome.system.proxy mode 'none'"));
}

TEST_F(DesktopProxyTest, KdeSetsItsKeysByTheseCommandsAndTellsWhoRuns) {
    haveKde("5");
    auto desktop = settings();
    desktop.setAutoProxyURL("KDE", kURL);
    desktop.setAutoProxyState("KDE", true);
    const auto requests = runner_.requests();
    ASSERT_EQ(requests.size(), 4U);
    EXPECT_EQ(requests[0].executable, "/usr/bin/kwriteconfig5");
    EXPECT_EQ(requests[0].arguments, Arguments({"--file", "kioslaverc", "--group", "Proxy Settings", "--key",
                                                "Proxy Config Script", "--", kURL}));
    EXPECT_EQ(requests[2].executable, "/usr/bin/kwriteconfig5");
    EXPECT_EQ(requests[2].arguments, Arguments({"--file", "kioslaverc", "--group", "Proxy Settings", "--key",
                                                "ProxyType", "--", "2"}));
    for (const auto at : {1U, 3U}) {
        EXPECT_EQ(requests[at].executable, "/usr/bin/dbus-send");
        EXPECT_EQ(requests[at].arguments,
                  Arguments({"--session", "--type=signal", "/KIO/Scheduler",
                             "org.kde.KIO.Scheduler.reparseSlaveConfiguration", "string:"}));
    }
}

TEST_F(DesktopProxyTest, KdeOffLooksAtTheTypeFirst) {
    answerModes("", "2");
    haveKde("5");
    settings().setAutoProxyState("KDE", false);
    EXPECT_THAT(
        runner_.lines(),
        ElementsAre("/usr/bin/kreadconfig5 --file kioslaverc --group Proxy Settings --key ProxyType",
                    "/usr/bin/kwriteconfig5 --file kioslaverc --group Proxy Settings --key ProxyType -- 0",
                    "/usr/bin/dbus-send --session --type=signal /KIO/Scheduler "
                    "org.kde.KIO.Scheduler.reparseSlaveConfiguration string:"));
}

TEST_F(DesktopProxyTest, NewerPlasmaIsPreferred) {
    answerModes("", "2");
    haveKde("5");
    haveKde("6");
    EXPECT_EQ(settings().activeAutoProxyURL("KDE"), kURL);
    settings().setAutoProxyURL("KDE", kURL);
    EXPECT_THAT(runner_.lines(), ElementsAre(testing::StartsWith("/usr/bin/kreadconfig6 "),
                                             testing::StartsWith("/usr/bin/kreadconfig6 "),
                                             testing::StartsWith("/usr/bin/kwriteconfig6 "),
                                             testing::StartsWith("/usr/bin/dbus-send ")));
}

TEST_F(DesktopProxyTest, InstalledDesktopsAreTheServices) {
    runner_.answer(kSettings, CommandResult{0, "true\n", ""});
    EXPECT_THAT(settings().allNetworkServices(), ElementsAre("GNOME"));
    EXPECT_THAT(runner_.lines(), ElementsAre("/usr/bin/gsettings writable org.gnome.system.proxy mode"));
    haveKde("6");
    EXPECT_THAT(settings().allNetworkServices(), ElementsAre("GNOME", "KDE"));
}

TEST_F(DesktopProxyTest, MissingLockedOrStuckGnomeIsNoService) {
    EXPECT_THAT(settings().allNetworkServices(), IsEmpty()); // no such program
    for (const auto& answer : {CommandResult{0, "false\n", ""}, CommandResult{1, "", "No such schema"},
                               CommandResult{SIGKILL, "true\n", ""}, CommandResult{0, "garbage", ""}}) {
        fakes::FakeCommandRunner runner;
        runner.answer(kSettings, answer);
        EXPECT_THAT(DesktopProxySettings(runner, host_, files_).allNetworkServices(), IsEmpty());
    }
}

TEST_F(DesktopProxyTest, KdeThatIsNotInstalledRunsNothing) {
    auto desktop = settings();
    desktop.setAutoProxyURL("KDE", kURL);
    desktop.setAutoProxyState("KDE", true);
    desktop.setAutoProxyState("KDE", false);
    desktop.setWebProxyOff("KDE");
    EXPECT_EQ(desktop.activeAutoProxyURL("KDE"), "");
    EXPECT_THAT(runner_.lines(), IsEmpty());
}

TEST_F(DesktopProxyTest, UnknownServiceRunsNothing) {
    haveKde("5");
    auto desktop = settings();
    desktop.setAutoProxyURL("Wi-Fi", kURL);
    desktop.setAutoProxyState("Wi-Fi", true);
    desktop.setSocksFirewallProxyOff("Wi-Fi");
    desktop.setWebProxyOff("");
    desktop.setSecureWebProxyOff("gnome");
    EXPECT_EQ(desktop.activeAutoProxyURL("Wi-Fi"), "");
    EXPECT_THAT(runner_.lines(), IsEmpty());
}

TEST_P(DesktopProxyLeaving, WritesOnlyWhatIsSwitchedOff) {
    using Settings = NetworkProxySettings;
    EXPECT_EQ(writes([](Settings& s, const char* name) { s.setAutoProxyState(name, false); }),
              GetParam().autoOffWrites);
    EXPECT_EQ(writes([](Settings& s, const char* name) { s.setSocksFirewallProxyOff(name); }),
              GetParam().manualOffWrites);
    EXPECT_EQ(writes([](Settings& s, const char* name) { s.setWebProxyOff(name); }),
              GetParam().manualOffWrites);
    EXPECT_EQ(writes([](Settings& s, const char* name) { s.setSecureWebProxyOff(name); }),
              GetParam().manualOffWrites);
}

TEST_P(DesktopProxyLeaving, AddressIsActiveOnlyWhereAScriptIsChosen) {
    answerModes(GetParam().gnomeMode, GetParam().kdeType);
    haveKde("5");
    const std::string expected = GetParam().autoOffWrites ? kURL : "";
    EXPECT_EQ(settings().activeAutoProxyURL("GNOME"), expected);
    EXPECT_EQ(settings().activeAutoProxyURL("KDE"), expected);
}

INSTANTIATE_TEST_SUITE_P(Table, DesktopProxyLeaving,
                         testing::Values(Leaving{"Script", "'auto'\n", "2", true, false},
                                         Leaving{"Manual", "'manual'\n", "1", false, true},
                                         Leaving{"None", "'none'\n", "0", false, false},
                                         Leaving{"DetectedOrUnset", "'other'\n", "3", false, false},
                                         Leaving{"Empty", "", "", false, false},
                                         Leaving{"Garbage", "auto\n", "two", false, false},
                                         Leaving{"CutOff", "'auto", "2 2", false, false}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(DesktopProxyTest, CommandsHaveTheApplicationsEnvironmentAndATimeLimit) {
    host_.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/run/user/1/bus";
    host_.environment["XDG_CONFIG_HOME"] = "/elsewhere";
    settings().setAutoProxyState("GNOME", true);
    const auto request = runner_.requests().front();
    EXPECT_EQ(request.environment, host_.environment);
    EXPECT_EQ(request.timeLimit, std::chrono::seconds(2));
}

TEST_F(DesktopProxyTest, WithoutASessionBusNoneIsStarted) {
    host_.environment.erase("DBUS_SESSION_BUS_ADDRESS");
    settings().setAutoProxyState("GNOME", true);
    EXPECT_EQ(runner_.requests().front().environment->at("DBUS_SESSION_BUS_ADDRESS"), "disabled:");
}

TEST_P(PrintedVariant, GivesTheText) {
    EXPECT_EQ(unquotedVariant(GetParam().printed), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Table, PrintedVariant,
                         testing::Values(Quoting{"Plain", "'auto'", "auto"}, Quoting{"Empty", "''", ""},
                                         Quoting{"OtherQuotes", "\"it's\"", "it's"},
                                         Quoting{"Escapes", R"('it\'s "a\\b')", "it's \"a\\b"},
                                         Quoting{"Bare", "auto", std::nullopt},
                                         Quoting{"Nothing", "", std::nullopt},
                                         Quoting{"OneQuote", "'", std::nullopt},
                                         Quoting{"Mixed", "'auto\"", std::nullopt},
                                         Quoting{"EndIsEscaped", R"('auto\')", std::nullopt},
                                         Quoting{"QuoteWithin", "'a'b'", std::nullopt},
                                         Quoting{"ControlCharacter", R"('a\nb')", std::nullopt},
                                         Quoting{"Array", "['a', 'b']", std::nullopt}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(QuotedVariant, ComesBackAsItWas) {
    EXPECT_EQ(quotedVariant(kURL), "'http://127.0.0.1:8899/proxy.pac'");
    for (const char* text : {"", "it's", "\"", "\\", "\\'", "a'b\\\"c", "đường"}) {
        EXPECT_EQ(unquotedVariant(quotedVariant(text)), text);
    }
}

} // namespace fernwick::platform
