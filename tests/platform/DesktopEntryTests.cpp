#include "platform/linux/DesktopEntry.h"

#include <gmock/gmock.h>

namespace fernwick::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

DesktopEntry parse(std::string_view lines, std::string_view locale = "C") {
    const auto entry = parseDesktopEntry("[Desktop Entry]\n" + std::string(lines), localesFitting(locale));
    return entry.value_or(
        DesktopEntry{.name = "no entry", .icon = {}, .tryExec = {}, .command = {}, .isShown = false});
}

std::vector<std::string> command(std::string_view exec) {
    return parse("Exec=" + std::string(exec) + "\n").command;
}

TEST(DesktopEntry, ReadsWhatAnApplicationSays) {
    const auto entry = parse("# comment\n\nType = Application\nName= Web Browser \nExec=browser %u\n"
                             "TryExec=browser\nIcon=org.example.Browser\nTerminal=false\n");
    EXPECT_EQ(entry, (DesktopEntry{.name = "Web Browser",
                                   .icon = "org.example.Browser",
                                   .tryExec = "browser",
                                   .command = {"browser"},
                                   .isShown = true}));
}

TEST(DesktopEntry, ShowsApplicationsThatAreNotHidden) {
    EXPECT_TRUE(parse("Type=Application\nHidden=false\nNoDisplay=false").isShown);
    EXPECT_FALSE(parse("Type=Application\nHidden=true").isShown);
    EXPECT_FALSE(parse("Type=Application\nNoDisplay=true").isShown);
    EXPECT_FALSE(parse("Type=Link").isShown);
    EXPECT_FALSE(parse("Name=x").isShown);
}

TEST(DesktopEntry, OtherGroupsSayNothing) {
    EXPECT_EQ(parse("Name=One\n[Desktop Action new]\nName=New Window\n[Desktop Entry]\nName=Again").name,
              "One");
    EXPECT_FALSE(parseDesktopEntry("Name=One\nType=Application\n", {}).has_value());
    EXPECT_FALSE(parseDesktopEntry("", {}).has_value());
    EXPECT_TRUE(parseDesktopEntry("junk\n[Other]\nName=a\n[Desktop Entry]\r\nName=b\r\n", {}).has_value());
}

TEST(DesktopEntry, FittingLocalesAreOrderedByTheirWorth) {
    EXPECT_THAT(localesFitting("sr_YU.UTF-8@Latn"), ElementsAre("sr_YU@Latn", "sr_YU", "sr@Latn", "sr"));
    EXPECT_THAT(localesFitting("vi_VN.UTF-8"), ElementsAre("vi_VN", "vi"));
    EXPECT_THAT(localesFitting("de@euro"), ElementsAre("de@euro", "de"));
    EXPECT_THAT(localesFitting("C.UTF-8"), IsEmpty());
    EXPECT_THAT(localesFitting("POSIX"), IsEmpty());
    EXPECT_THAT(localesFitting(""), IsEmpty());
}

TEST(DesktopEntry, NameIsTheBestTranslationWhateverTheOrder) {
    constexpr auto lines =
        "Name[sr]=c\nName[sr_YU]=b\nName=plain\nName[sr@Latn]=d\nName[sr_YU@Latn]=a\nName[de]=e\n";
    EXPECT_EQ(parse(lines, "sr_YU@Latn").name, "a");
    EXPECT_EQ(parse(lines, "sr_YU.UTF-8").name, "b");
    EXPECT_EQ(parse(lines, "sr_RS@Latn").name, "d");
    EXPECT_EQ(parse(lines, "sr").name, "c");
    EXPECT_EQ(parse(lines, "vi_VN.UTF-8").name, "plain");
    EXPECT_EQ(parse(lines, "C").name, "plain");
}

TEST(DesktopEntry, NameThatIsNoUtf8IsPassedOver) {
    EXPECT_EQ(parse("Name[vi]=Tr\xECnh\nName=Browser", "vi_VN").name, "Browser");
    EXPECT_EQ(parse("Name=\xFF\xFE").name, "");
}

TEST(DesktopEntry, ValuesMayHoldEscapes) {
    EXPECT_EQ(parse(R"(Name=a\sb\tc\\d\q)").name, "a b\tc\\d\\q");
    EXPECT_EQ(parse(R"(Name=at the end \)").name, "at the end \\");
}

TEST(DesktopEntry, CommandIsSplitAtBlanks) {
    EXPECT_THAT(command("/usr/bin/foo  --new   window"), ElementsAre("/usr/bin/foo", "--new", "window"));
    EXPECT_THAT(command(""), IsEmpty());
    EXPECT_THAT(command("   "), IsEmpty());
}

TEST(DesktopEntry, QuotedArgumentsStayTogether) {
    EXPECT_THAT(command(R"("/opt/my app/run" "")"), ElementsAre("/opt/my app/run", ""));
    // A backslash in a quotation is written twice, for the value has escapes of its own.
    EXPECT_THAT(command(R"(foo "a \\"b\\" \\$c \\`d\\` \\\\e")"), ElementsAre("foo", "a \"b\" $c `d` \\e"));
    EXPECT_THAT(command(R"(foo "a \"b\"")"), ElementsAre("foo", "a \"b\""));
    EXPECT_THAT(command(R"(foo a\\ b)"), ElementsAre("foo", "a b"));
}

TEST(DesktopEntry, QuotationWithoutAnEndIsNoCommand) {
    EXPECT_THAT(command(R"(foo "bar)"), IsEmpty());
}

TEST(DesktopEntry, FieldCodesAreLeftOut) {
    EXPECT_THAT(command("foo %f %F %u %U %i %c %k"), ElementsAre("foo"));
    EXPECT_THAT(command("foo --open=%u 100%%"), ElementsAre("foo", "--open=", "100%"));
    EXPECT_THAT(command("foo %"), ElementsAre("foo"));
    EXPECT_THAT(command(R"(foo "%u")"), ElementsAre("foo", "%u"));
    EXPECT_THAT(command(R"(foo "100%%" "%")"), ElementsAre("foo", "100%", "%"));
}

TEST(DesktopEntry, GarbageIsSurvived) {
    EXPECT_EQ(parse(std::string_view("=\n==\n[\n]\nName[=x\nName[]=y\n\0Name=z\n", 34)).name, "");
    EXPECT_EQ(parse(std::string(100000, '[')).name, "");
    EXPECT_EQ(parse("Name=" + std::string(100000, 'x')).name.size(), 100000U);
}

} // namespace
} // namespace fernwick::platform
