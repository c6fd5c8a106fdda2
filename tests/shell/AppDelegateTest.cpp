#include "shell/AppDelegate.h"

#include "platform/qt/QtDispatch.h"
#include "shell/WindowManager.h"
#include "support/FakeDispatch.h"

#include <QApplication>
#include <QDialog>
#include <QMainWindow>
#include <QTimer>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>

namespace fernwick {
namespace {

using namespace std::chrono_literals;

// What is asked at the end, from whichever thread.
class EndRouting final : public RoutingLayer {
public:
    void startPacServer() override {}
    [[nodiscard]] TunnelStore* tunnelStore() const override { return nullptr; }
    void setTunnelStore(TunnelStore& /*store*/) override {}
    void scheduleRebuild(std::vector<Tunnel> /*tunnels*/, TunnelPortMap /*ports*/) override {}
    void applySystemProxy(TunnelPortMap /*ports*/) override {}
    void removeAllProxy(std::string_view reason, bool wait) override {
        note("removeAllProxy " + std::string(reason) + (wait ? " and wait" : ""));
    }
    void stopPacServer() override { note("stopPacServer"); }
    void stopEngine() override {
        std::unique_lock lock(mutex_);
        released_.wait(lock, [this] { return !hanging_; });
        calls_.emplace_back("stopEngine");
    }

    void hang(bool hanging) {
        const std::lock_guard lock(mutex_);
        hanging_ = hanging;
        released_.notify_all();
    }
    [[nodiscard]] std::vector<std::string> calls() {
        const std::lock_guard lock(mutex_);
        return calls_;
    }

private:
    void note(std::string call) {
        const std::lock_guard lock(mutex_);
        calls_.push_back(std::move(call));
    }

    std::mutex mutex_;
    std::condition_variable released_;
    bool hanging_ = false;
    std::vector<std::string> calls_;
};

struct ShellWorld {
    fakes::FakeDispatch dispatch;
    EndRouting routing;
    AppDelegate delegate{dispatch, routing};
    WindowManager windows{dispatch, delegate};

    // Lets the application find its main window as it does after the start.
    void launch() {
        delegate.applicationDidFinishLaunching();
        dispatch.advance(AppDelegate::kAdoptionDelay);
    }
};

std::unique_ptr<QMainWindow> shown(const char16_t* title) {
    auto window = std::make_unique<QMainWindow>();
    window->setWindowTitle(QString::fromUtf16(title));
    window->show();
    return window;
}

TEST(AppDelegate, AdoptsTheMainWindowATenthOfASecondAfterTheStart) {
    ShellWorld world;
    const auto window = shown(u"Fernwick");
    world.delegate.applicationDidFinishLaunching();
    world.dispatch.advance(99ms);
    EXPECT_EQ(world.delegate.mainWindow(), nullptr);
    world.dispatch.advance(1ms);
    EXPECT_EQ(world.delegate.mainWindow(), window.get());
}

TEST(AppDelegate, AsksForUpdatesOnceASecondAfterTheStart) {
    ShellWorld world;
    int checks = 0;
    world.delegate.setUpdateCheck([&] { ++checks; });
    world.delegate.applicationDidFinishLaunching();
    world.dispatch.advance(999ms);
    EXPECT_EQ(checks, 0);
    world.dispatch.advance(1ms);
    EXPECT_EQ(checks, 1);
    world.dispatch.advance(1h);
    EXPECT_EQ(checks, 1);
}

TEST(AppDelegate, DoesNotAdoptSettingsOrPanels) {
    ShellWorld world;
    const auto settings = shown(u"Settings");
    QDialog dialog;
    dialog.setWindowTitle(QStringLiteral("New Tunnel"));
    dialog.show();
    world.launch();
    EXPECT_EQ(world.delegate.mainWindow(), nullptr);
}

TEST(AppDelegate, AdoptsAWindowWithoutATitle) {
    ShellWorld world;
    const auto window = shown(u"");
    world.launch();
    EXPECT_EQ(world.delegate.mainWindow(), window.get());
}

TEST(AppDelegate, ClosingTheAdoptedWindowHidesItAndKeepsIt) {
    ShellWorld world;
    const auto window = shown(u"Fernwick");
    world.launch();
    EXPECT_FALSE(window->close());
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(world.delegate.mainWindow(), window.get());
    EXPECT_FALSE(world.delegate.applicationShouldTerminateAfterLastWindowClosed());
}

TEST(AppDelegate, ReopenShowsTheSameWindowAgain) {
    ShellWorld world;
    const auto window = shown(u"Fernwick");
    world.launch();
    window->close();
    EXPECT_TRUE(world.delegate.applicationShouldHandleReopen(false));
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(world.delegate.applicationShouldHandleReopen(true));
    EXPECT_TRUE(window->isVisible());
}

TEST(AppDelegate, ReopenAdoptsAWindowWhenThereIsNone) {
    ShellWorld world;
    const auto window = shown(u"Fernwick");
    window->hide();
    EXPECT_TRUE(world.delegate.applicationShouldHandleReopen(false));
    EXPECT_EQ(world.delegate.mainWindow(), window.get());
    EXPECT_TRUE(window->isVisible());
}

TEST(AppDelegate, ReopenWithoutAnyCandidateDoesNothingMore) {
    ShellWorld world;
    const auto settings = shown(u"Settings");
    settings->hide();
    EXPECT_TRUE(world.delegate.applicationShouldHandleReopen(false));
    EXPECT_EQ(world.delegate.mainWindow(), nullptr);
    EXPECT_FALSE(settings->isVisible());
}

TEST(AppDelegate, ForgetsAWindowThatWasDestroyed) {
    ShellWorld world;
    auto window = shown(u"Fernwick");
    world.launch();
    window.reset();
    EXPECT_EQ(world.delegate.mainWindow(), nullptr);
}

// The toolkit asks every window before it ends, and the adopted one refuses to close.
TEST(AppDelegate, TheEndOfTheSessionIsHeldUpByNoWindow) {
    ShellWorld world;
    const auto window = shown(u"Fernwick");
    world.launch();
    QDialog sheet(window.get(), Qt::Sheet);
    sheet.open();
    QTimer::singleShot(0, qApp, [] {
        QEvent quit(QEvent::Quit); // what the toolkit makes of the session manager's last word
        QCoreApplication::sendEvent(qApp, &quit);
    });
    QTimer::singleShot(5s, qApp, [] { QCoreApplication::exit(EXIT_FAILURE); });
    EXPECT_EQ(QApplication::exec(), EXIT_SUCCESS);
}

// Which window the toolkit asks first is left to chance.
TEST(AppDelegate, TheEndIsHeldUpByNoWindowBesideTheMainOne) {
    ShellWorld world;
    const auto window = shown(u"Fernwick");
    world.launch();
    std::vector<std::unique_ptr<QMainWindow>> others;
    for (int count = 0; count < 10; ++count) {
        others.push_back(shown(u"Beside"));
    }
    QTimer::singleShot(0, qApp, [] { QCoreApplication::quit(); });
    QTimer::singleShot(5s, qApp, [] { QCoreApplication::exit(EXIT_FAILURE); });
    EXPECT_EQ(QApplication::exec(), EXIT_SUCCESS);
}

TEST(WindowManager, PrefersTheMainWindowThenTheActionThenAnotherWindow) {
    ShellWorld world;
    auto main = shown(u"Fernwick");
    world.launch();
    main->close();
    const auto settings = shown(u"Settings");
    const auto untitled = shown(u"");
    int opened = 0;
    world.windows.setOpenWindowAction([&] { ++opened; });
    world.windows.openMainWindow();
    EXPECT_FALSE(main->isVisible());
    world.dispatch.runMain();
    EXPECT_TRUE(main->isVisible());
    EXPECT_EQ(opened, 0);
    main.reset();
    world.windows.openMainWindow();
    world.dispatch.runMain();
    EXPECT_EQ(opened, 1);
}

TEST(WindowManager, TheScanSkipsSettingsAndUntitledWindows) {
    ShellWorld world;
    const auto settings = shown(u"Settings");
    const auto untitled = shown(u"");
    settings->hide();
    untitled->hide();
    world.windows.openMainWindow();
    world.dispatch.runMain();
    EXPECT_FALSE(settings->isVisible() || untitled->isVisible());
    const auto other = shown(u"Proxies");
    other->hide();
    world.windows.openMainWindow();
    world.dispatch.runMain();
    EXPECT_TRUE(other->isVisible());
}

TEST(WindowManager, ANewOpenActionReplacesTheOldOne) {
    ShellWorld world;
    int first = 0;
    int second = 0;
    world.windows.setOpenWindowAction([&] { ++first; });
    world.windows.setOpenWindowAction([&] { ++second; });
    world.windows.openMainWindow();
    world.dispatch.runMain();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST(AppDelegate, TheEndHidesEveryWindowAndStopsTheRoutingInOrder) {
    platform::QtDispatch dispatch;
    EndRouting routing;
    AppDelegate delegate(dispatch, routing);
    const auto main = shown(u"Fernwick");
    const auto settings = shown(u"Settings");
    delegate.applicationWillTerminate();
    EXPECT_FALSE(main->isVisible() || settings->isVisible());
    EXPECT_EQ(routing.calls(), (std::vector<std::string>{
                                   "stopPacServer", "removeAllProxy App terminated and wait", "stopEngine"}));
}

TEST(AppDelegate, AnEngineThatHangsCostsTwoSecondsAndNoMore) {
    EndRouting routing;
    platform::QtDispatch dispatch;
    AppDelegate delegate(dispatch, routing);
    routing.hang(true);
    const auto began = std::chrono::steady_clock::now();
    delegate.applicationWillTerminate();
    const auto took = std::chrono::steady_clock::now() - began;
    EXPECT_GE(took, 2000ms);
    EXPECT_LT(took, 2500ms);
    routing.hang(false);
}

} // namespace
} // namespace fernwick
