// Pictures of the popover and of the menu-bar icon, for eyes: they lie in the build folder, under pictures/.
// The test itself says that each could be drawn, and that the icon stands out from every panel.
#include "MenuBarBench.h"
#include "screens/menubar/MenuBarGlyph.h"
#include "screens/menubar/MenuBarIconView.h"

#include <QDir>
#include <QPainter>
#include <gtest/gtest.h>

#include <cmath>

namespace fernwick::tests {
namespace {

struct Shot {
    Appearance appearance;
    const char* name;
};

void saveAs(const QImage& picture, const QString& name) {
    const QString folder = QStringLiteral(FERNWICK_PICTURES);
    QDir().mkpath(folder);
    EXPECT_TRUE(picture.save(QStringLiteral("%1/%2.png").arg(folder, name)));
}

class PopoverPictures : public testing::TestWithParam<Shot> {
protected:
    PopoverPictures() : bench(GetParam().appearance) {}

    void addFour() {
        for (const auto& [name, host, port] :
             {std::tuple("Production DB", "db1.internal.example.com", "5432"),
              std::tuple("Staging web", "staging.example.com", "8080"),
              std::tuple("Office proxy", "gate.example.org", ""), std::tuple("Home", "192.168.1.20", "3000")}) {
            Tunnel tunnel = tunnelNamed(name, "anna", host);
            tunnel.localPort = port;
            tunnels.push_back(bench.add(tunnel));
        }
        bench.connected(tunnels[0]);
        bench.connecting(tunnels[1]);
        bench.failed(tunnels[3]);
    }

    void save(const char* name) {
        bench.settle();
        QTest::qWait(2 * PopoverTunnelList::kFadeTime); // for the fading, which is no part of what is tested
        const QImage image = bench.popover->grab().toImage();
        const int inside = static_cast<int>(20 * image.devicePixelRatio());
        EXPECT_NE(image.pixel(inside, inside), image.pixel(2, 2)) << name;
        // The whole file is run a second time on a screen of twice the density.
        const char* density = image.devicePixelRatio() > 1 ? "-2x" : "";
        saveAs(image, QStringLiteral("popover-%1-%2%3")
                          .arg(QString::fromLatin1(name), QString::fromLatin1(GetParam().name),
                               QString::fromLatin1(density)));
    }

    MenuBarBench bench;
    std::vector<Tunnel> tunnels;
};

TEST_P(PopoverPictures, Empty) {
    bench.openPopover();
    save("empty");
}

TEST_P(PopoverPictures, MixedStates) {
    addFour();
    bench.openPopover();
    save("mixed");
    bench.hover(0);
    save("hovered-active");
    bench.hover(2);
    save("hovered-idle");
}

TEST_P(PopoverPictures, Keyboard) {
    addFour();
    bench.openPopover().activateWindow();
    bench.leave();
    QTest::keyClick(&bench.list(), Qt::Key_Down);
    QTest::keyClick(&bench.list(), Qt::Key_Down);
    save("keyboard-row");
    QTest::keyClick(&bench.list(), Qt::Key_Tab);
    save("keyboard-footer");
    bench.part<QWidget>("connectAllButton").setFocus(Qt::BacktabFocusReason);
    save("keyboard-action");
}

TEST_P(PopoverPictures, LongAndForeignNames) {
    Tunnel tunnel = tunnelNamed("A very long name for a tunnel that does not fit into any popover at all", "u",
                                "a-host-name-that-is-also-very-long.internal.example.com");
    tunnel.localPort = "65535";
    bench.add(tunnel);
    bench.add(tunnelNamed("שרת הייצור", "u", "example.co.il"));
    bench.add(tunnelNamed("خادم الإنتاج الرئيسي في مركز البيانات الأول بالقاهرة", "u", "example.com"));
    bench.add(tunnelNamed("生产数据库 🚀", "u", "例え.jp"));
    bench.add(tunnelNamed("line one\nline two\ttab", "u", "10.0.0.1"));
    bench.add(tunnelNamed(std::string(10000, 'x'), "u", std::string(10000, 'h')));
    bench.openPopover();
    bench.hover(0);
    save("names");
}

TEST_P(PopoverPictures, TwoHundredTunnels) {
    for (int number = 1; number <= 200; ++number) {
        Tunnel tunnel = tunnelNamed("Tunnel " + std::to_string(number));
        tunnel.localPort = std::to_string(10000 + number);
        bench.store.add(tunnel);
    }
    bench.settle();
    bench.openPopover();
    bench.hover(3);
    save("two-hundred");
}

TEST_P(PopoverPictures, RightToLeft) {
    addFour();
    QApplication::setLayoutDirection(Qt::RightToLeft);
    bench.openPopover();
    bench.hover(0);
    save("right-to-left");
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

INSTANTIATE_TEST_SUITE_P(Both, PopoverPictures,
                         testing::Values(Shot{Appearance::light, "light"}, Shot{Appearance::dark, "dark"}),
                         [](const auto& info) { return std::string(info.param.name); });

// How far a colour stands out from a ground, 1 to 21 (WCAG 2.1, "contrast ratio").
double contrast(const QColor& one, const QColor& other) {
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
    };
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

constexpr std::array kSymbols{MenuBarSymbol::networkSlash, MenuBarSymbol::network,
                              MenuBarSymbol::networkShield};
constexpr std::array kSides{16, 22, 32};
const std::array kPanels{QColor(0xF6, 0xF6, 0xF8), QColor(0xDE, 0xDE, 0xDE), QColor(0x2E, 0x34, 0x36),
                         QColor(0x0A, 0x0A, 0x0A)};

QImage onPanel(const QImage& glyph, const QColor& panel) {
    QImage image(glyph.size(), QImage::Format_RGB32);
    image.fill(panel);
    QPainter(&image).drawImage(0, 0, glyph);
    return image;
}

TEST(MenuBarGlyphPictures, AllOnAllPanels) {
    const Bench bench; // with the theme come the files
    for (const auto& [appearance, name] :
         {std::pair(Appearance::light, "light"), std::pair(Appearance::dark, "dark")}) {
        QImage sheet(3 * 40, 4 * 3 * 40, QImage::Format_RGB32);
        QPainter painter(&sheet);
        int row = 0;
        for (const QColor& panel : kPanels) {
            for (const int side : kSides) {
                painter.fillRect(0, row * 40, sheet.width(), 40, panel);
                for (std::size_t column = 0; column < kSymbols.size(); ++column) {
                    const int inset = (40 - side) / 2;
                    painter.drawImage(static_cast<int>(column) * 40 + inset, row * 40 + inset,
                                      menuBarGlyph(kSymbols[column], appearance, side));
                }
                ++row;
            }
        }
        painter.end();
        saveAs(sheet, QStringLiteral("menubar-icons-%1").arg(QString::fromLatin1(name)));
        saveAs(sheet.scaled(sheet.size() * 3),
               QStringLiteral("menubar-icons-%1-3x").arg(QString::fromLatin1(name)));
    }
}

// Whatever the appearance: nobody tells what colour the panel is.
TEST(MenuBarGlyphPictures, EveryIconIsReadableOnEveryPanel) {
    const Bench bench;
    for (const auto appearance : {Appearance::light, Appearance::dark}) {
        for (const auto symbol : kSymbols) {
            for (const int side : kSides) {
                for (const QColor& panel : kPanels) {
                    const QImage image = onPanel(menuBarGlyph(symbol, appearance, side), panel);
                    int clear = 0;
                    for (int at = 0; at < side * side; ++at) {
                        clear += contrast(image.pixelColor(at % side, at / side), panel) >= 3.0 ? 1 : 0;
                    }
                    EXPECT_GE(clear, side * side / 12) << side << panel.name().toStdString();
                }
            }
        }
    }
}

// The straight lines lie on whole pixels: no pixel of the plain symbol's trunk is half covered.
TEST(MenuBarGlyphPictures, LinesAreCrispInEverySize) {
    const Bench bench;
    for (const int side : kSides) {
        const QImage glyph = menuBarGlyph(MenuBarSymbol::network, Appearance::dark, side);
        const QColor ink = paletteFor(Appearance::dark).text;
        int full = 0;
        int partial = 0;
        for (int x = 0; x < side; ++x) {
            const QColor pixel = glyph.pixelColor(x, side * 3 / 8);
            full += pixel == ink ? 1 : 0;
            partial += pixel != ink && pixel.lightness() > 40 ? 1 : 0;
        }
        EXPECT_EQ(full, side == 22 ? 2 : side / 8) << side;
        EXPECT_EQ(partial, 0) << side;
    }
}

} // namespace
} // namespace fernwick::tests
