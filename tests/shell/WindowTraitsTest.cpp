#include "shell/WindowTraits.h"

#include <QDialog>
#include <QMainWindow>
#include <gtest/gtest.h>

namespace fernwick {
namespace {

WindowTraits ordinary(std::string className, std::string title) {
    return {.canBecomeMain = true,
            .canBecomeKey = true,
            .isPanel = false,
            .className = std::move(className),
            .title = std::move(title)};
}

struct TraitsRow {
    std::string name;
    WindowTraits window;
    bool adopted, standsIn;
};

class WindowRules : public testing::TestWithParam<TraitsRow> {};

TEST_P(WindowRules, DecideAsTheTableSays) {
    EXPECT_EQ(canBeAdopted(GetParam().window), GetParam().adopted);
    EXPECT_EQ(canStandIn(GetParam().window), GetParam().standsIn);
}

WindowTraits without(bool WindowTraits::* trait) {
    auto window = ordinary("QMainWindow", "Fernwick");
    window.*trait = false;
    return window;
}

WindowTraits panel() {
    auto window = ordinary("QDialog", "New Tunnel");
    window.isPanel = true;
    return window;
}

INSTANTIATE_TEST_SUITE_P(
    Table, WindowRules,
    testing::Values(TraitsRow{"Main", ordinary("fernwick::MainWindow", "Fernwick"), true, true},
                    TraitsRow{"Settings", ordinary("QMainWindow", "Settings"), false, false},
                    TraitsRow{"EmptyTitle", ordinary("QMainWindow", ""), true, false},
                    TraitsRow{"MenuBarExtra", ordinary("fernwick::MenuBarExtraWindow", "x"), false, false},
                    TraitsRow{"StatusBar", ordinary("fernwick::StatusBarWindow", "x"), false, false},
                    TraitsRow{"NameThatOnlyContainsPanel", ordinary("ColourPanelWindow", "x"), true, false},
                    TraitsRow{"NotMain", without(&WindowTraits::canBecomeMain), false, true},
                    TraitsRow{"NotKey", without(&WindowTraits::canBecomeKey), false, false},
                    TraitsRow{"Panel", panel(), false, true}),
    [](const auto& row) { return row.param.name; });

TEST(WindowTraits, AnOrdinaryWindowIsReadAsOne) {
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Fernwick"));
    const auto traits = traitsOf(window);
    EXPECT_TRUE(traits.canBecomeMain && traits.canBecomeKey && !traits.isPanel);
    EXPECT_EQ(traits.className, "QMainWindow");
    EXPECT_EQ(traits.title, "Fernwick");
}

TEST(WindowTraits, AuxiliaryWindowsAreReadAsPanels) {
    for (const auto type : {Qt::Dialog, Qt::Tool, Qt::Popup, Qt::ToolTip, Qt::SplashScreen}) {
        const QWidget window(nullptr, type);
        const auto traits = traitsOf(window);
        EXPECT_TRUE(traits.isPanel) << type;
        EXPECT_FALSE(traits.canBecomeMain) << type;
    }
}

// The toolkit's icon in a tray of the X server has no other mark.
TEST(WindowTraits, WindowThatNoWindowManagerKnowsIsNeitherMainNorKey) {
    const QWidget window(nullptr, Qt::Window | Qt::BypassWindowManagerHint);
    EXPECT_FALSE(canBeAdopted(traitsOf(window)));
    EXPECT_FALSE(canStandIn(traitsOf(window)));
}

TEST(WindowTraits, WindowThatTakesNoKeyboardIsNeverKey) {
    const QWidget window(nullptr, Qt::Window | Qt::WindowDoesNotAcceptFocus);
    EXPECT_FALSE(traitsOf(window).canBecomeKey);
}

} // namespace
} // namespace fernwick
