#include "screens/theme/Theme.h"

#include "screens/detail/LogRowDelegate.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/StatusColors.h"
#include "screens/theme/TagColors.h"
#include "screens/theme/TypeIcons.h"

#include <QAccessible>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <gtest/gtest.h>

#include <set>

namespace fernwick::tests {
namespace {

struct TagCase {
    const char* label;
    std::string hex;
    std::optional<unsigned> rgb; // absent: blue
};

class TagColor : public testing::TestWithParam<TagCase> {};

TEST_P(TagColor, IsReadFromItsText) {
    for (const auto appearance : {Appearance::light, Appearance::dark}) {
        const Palette colors = paletteFor(appearance);
        const auto& rgb = GetParam().rgb;
        EXPECT_EQ(tagColor(GetParam().hex, colors).rgba(), rgb ? 0xFF000000U | *rgb : colors.blue.rgba());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, TagColor,
    testing::Values(TagCase{"WithHash", "#0A84FF", 0x0A84FF}, TagCase{"WithoutHash", "0A84FF", 0x0A84FF},
                    TagCase{"LowerCase", "#ff453a", 0xFF453A},
                    TagCase{"WhiteSpaceAround", " \t\n#30D158\r\n ", 0x30D158},
                    TagCase{"HashesAnywhere", "##FF#00#FF#", 0xFF00FF},
                    TagCase{"ShortIsASmallNumber", "FFF", 0x000FFF},
                    TagCase{"LongKeepsTheLowBytes", "AB123456", 0x123456},
                    TagCase{"SixtyFourBits", "FFFFFFFFFF010203", 0x010203}, TagCase{"Zero", "0", 0x000000},
                    TagCase{"NoDigits", "zz", std::nullopt}, TagCase{"Empty", "", std::nullopt},
                    TagCase{"OnlyHash", "#", std::nullopt}, TagCase{"HalfReadable", "12zz", std::nullopt},
                    TagCase{"BlankInside", "12 34", std::nullopt}, TagCase{"Negative", "-1", std::nullopt},
                    TagCase{"BeyondSixtyFourBits", "1FFFFFFFFFFFFFFFF", std::nullopt},
                    TagCase{"NotUtf8", "\xff\xfe", std::nullopt}),
    [](const auto& info) { return info.param.label; });

TEST(StatusColor, FollowsTheTable) {
    const Palette colors = paletteFor(Appearance::light);
    EXPECT_EQ(statusColor(TunnelStatus::idle(), colors), colors.gray);
    EXPECT_EQ(statusColor(TunnelStatus::connecting(), colors), colors.orange);
    EXPECT_EQ(statusColor(TunnelStatus::connected(), colors), colors.green);
    EXPECT_EQ(statusColor(TunnelStatus::disconnected(), colors), colors.gray);
    EXPECT_EQ(statusColor(TunnelStatus::error("x"), colors), colors.red);
    EXPECT_EQ(statusColor(std::nullopt, colors), colors.gray);
}

TEST(TypeIcon, FollowsTheTable) {
    EXPECT_EQ(iconOf(TunnelType::localForward), Icon::circleRight);
    EXPECT_EQ(iconOf(TunnelType::remoteForward), Icon::circleLeft);
    EXPECT_EQ(iconOf(TunnelType::socks5), Icon::globe);
    EXPECT_EQ(iconOf(TunnelType::dynamicForward), Icon::network);
}

TEST(LogLevelLook, FollowsTheTable) {
    const auto expectLook = [](LogLevel level, Icon icon, QColor Palette::* ink, QColor Palette::* text) {
        const LogLevelLook look = lookOf(level);
        EXPECT_EQ(look.icon, icon);
        EXPECT_EQ(look.iconColor, ink);
        EXPECT_EQ(look.messageColor, text);
    };
    expectLook(LogLevel::info, Icon::infoCircle, &Palette::secondary, &Palette::text);
    expectLook(LogLevel::success, Icon::checkCircle, &Palette::green, &Palette::green);
    expectLook(LogLevel::warning, Icon::warning, &Palette::orange, &Palette::text);
    expectLook(LogLevel::error, Icon::crossCircle, &Palette::red, &Palette::red);
}

TEST(Icons, AreAllThereAndTinted) {
    const Icons icons;
    std::set<QByteArray> different;
    for (int number = 0; number <= static_cast<int>(Icon::application); ++number) {
        const QPixmap pixmap = icons.pixmap(static_cast<Icon>(number), QColor(200, 0, 0), 24, 2.0);
        ASSERT_EQ(pixmap.size(), QSize(48, 48)) << number;
        EXPECT_EQ(pixmap.devicePixelRatio(), 2.0);
        const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
        bool drawn = false;
        for (int pixel = 0; pixel < 48 * 48; ++pixel) {
            drawn = drawn || qAlpha(image.pixel(pixel % 48, pixel / 48)) == 255;
        }
        EXPECT_TRUE(drawn) << number;
        different.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
    }
    EXPECT_EQ(different.size(), static_cast<std::size_t>(Icon::application) + 1);
}

TEST(Theme, ChangesTheWholeApplication) {
    Theme theme(*qApp, Appearance::light);
    int changes = 0;
    const auto subscription = theme.changed.connect([&] { ++changes; });
    QLabel label;
    EXPECT_EQ(label.palette().color(QPalette::WindowText), paletteFor(Appearance::light).text);
    theme.setAppearance(Appearance::dark);
    QApplication::processEvents();
    EXPECT_EQ(label.palette().color(QPalette::WindowText), paletteFor(Appearance::dark).text);
    theme.setAppearance(Appearance::dark);
    EXPECT_EQ(changes, 1);
}

TEST(Theme, TheEnvironmentCanForceTheAppearance) {
    qputenv("FERNWICK_APPEARANCE", "dark");
    EXPECT_EQ(Theme::forcedAppearance(), Appearance::dark);
    qputenv("FERNWICK_APPEARANCE", "light");
    EXPECT_EQ(Theme::forcedAppearance(), Appearance::light);
    qputenv("FERNWICK_APPEARANCE", "pink");
    EXPECT_EQ(Theme::forcedAppearance(), std::nullopt);
    qunsetenv("FERNWICK_APPEARANCE");
    EXPECT_EQ(Theme::forcedAppearance(), std::nullopt);
}

TEST(Theme, TextCanBeReadOnItsGround) {
    const auto luminance = [](const QColor& color) {
        const auto part = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
    };
    const auto contrast = [&](const QColor& one, const QColor& other) {
        const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
        return (light + 0.05) / (dark + 0.05);
    };
    for (const auto appearance : {Appearance::light, Appearance::dark}) {
        const Palette colors = paletteFor(appearance);
        for (const QColor& ground : {colors.window, colors.sidebar, colors.surface}) {
            EXPECT_GE(contrast(colors.text, ground), 7.0);
            EXPECT_GE(contrast(colors.secondary, ground), 4.5);
        }
        for (const QColor& status : {colors.green, colors.red, colors.orange, colors.gray}) {
            EXPECT_GE(contrast(status, colors.surface), 3.6);
        }
        EXPECT_GE(contrast(colors.onAccent, colors.accent), 3.8);
    }
}

TEST(WindowAccess, PlainWindowIsSpokenAsAWindowAndAPartOfOneIsNot) {
    const Theme theme(*qApp, Appearance::light);
    QWidget window;
    window.setWindowTitle(QStringLiteral("Proxies"));
    QWidget part(&window);
    auto* spoken = QAccessible::queryAccessibleInterface(&window);
    EXPECT_EQ(spoken->role(), QAccessible::Window);
    EXPECT_EQ(spoken->text(QAccessible::Name), QStringLiteral("Proxies"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&part)->role(), QAccessible::Client);
    QWidget outer;
    window.setParent(&outer);
    EXPECT_EQ(spoken->role(), QAccessible::Client);
    window.setParent(nullptr);
}

TEST(DisplayLine, IsOneShortLine) {
    EXPECT_EQ(displayLine("a\nb\r\nc\td"), QStringLiteral("a b  c d"));
    EXPECT_EQ(displayLine(std::string_view("a\0b", 3)), QStringLiteral("a b"));
    EXPECT_EQ(displayLine("a\u2028b\u2029c\u0085d"), QStringLiteral("a b c d"));
    EXPECT_EQ(displayLine("abc\u202Egpj.exe"), QStringLiteral("abcgpj.exe"));
    EXPECT_EQ(displayLine(std::string(10000, 'x')).size(), kLongestLine + 1);
    EXPECT_EQ(displayLine("abcdef", 3), QStringLiteral("abc\u2026"));
    EXPECT_EQ(displayLine("ab\U0001F680cd", 3), QStringLiteral("ab\u2026"));
    EXPECT_EQ(displayLine("\xff"), QStringLiteral("\uFFFD"));
    EXPECT_EQ(displayLine(""), QString());
}

TEST(Theme, MakesSeveralLinesOfWhatOthersWrote) {
    EXPECT_EQ(displayText("a\nb\r\nc\rd\te"), QStringLiteral("a\nb\nc\nd\te"));
    EXPECT_EQ(displayText("a\u2028b\u2029c\u0085d\fe\vf"), QStringLiteral("a\nb\nc\nd\ne\nf"));
    EXPECT_EQ(displayText(std::string_view("a\0b\x1B[31m\u007F", 9)), QStringLiteral("a b [31m "));
    EXPECT_EQ(displayText("\u202Egpj.exe\u2066\uFDD0\uFFFF"), QStringLiteral("gpj.exe  "));
    EXPECT_EQ(displayText("<b>&amp;</b>\xff \U0001F680"), QStringLiteral("<b>&amp;</b>\uFFFD \U0001F680"));
    EXPECT_EQ(displayText(std::string(100'000, 'x')).size(), 100'000);
}

} // namespace
} // namespace fernwick::tests
