// What the user feels with 10,000 tunnels: a key in the search field, and a frame while the list scrolls; and
// with 200 the click on the menu-bar icon.
#include "screens/Coalescer.h"
#include "screens/main/ContentView.h"
#include "screens/main/MainWindow.h"
#include "shell/MenuBarExtraWindow.h"
#include "support/FakeClock.h"
#include "support/FakeDispatch.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeKeychain.h"
#include "support/FakePlatform.h"
#include "support/FakeProcesses.h"
#include "support/FakeUserDefaults.h"
#include "support/QuietPlatform.h"
#include "support/RecordWriter.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace fernwick;

constexpr int kTunnels = 10000;
constexpr int kTunnelsInPopover = 200;

std::string catalogue(int count) {
    std::vector<Tunnel> tunnels;
    for (int number = 0; number < count; ++number) {
        Tunnel tunnel;
        tunnel.id = support::Uuid::random();
        tunnel.name =
            "Tunnel number " + std::to_string(number) + (number % 3 == 0 ? " in production" : " at home");
        tunnel.host = "host" + std::to_string(number * 7) + ".internal.example.com";
        tunnel.user = number % 2 == 0 ? "ubuntu" : "deploy";
        tunnels.push_back(std::move(tunnel));
    }
    return support::encodeList(tunnels).value();
}

// The main window over a catalogue of so many tunnels.
struct Window {
    explicit Window(int count = kTunnels) : defaults(filledDefaults(count)) {
        window.resize(MainWindow::kMinimumWidth, MainWindow::kMinimumHeight);
        window.show();
        QApplication::processEvents();
    }

    static std::unique_ptr<fakes::FakeUserDefaults> filledDefaults(int count) {
        auto defaults = std::make_unique<fakes::FakeUserDefaults>();
        defaults->setData(TunnelStore::kDefaultsKey, catalogue(count));
        return defaults;
    }

    std::unique_ptr<fakes::FakeUserDefaults> defaults;
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeHostEnvironment host;
    fakes::FakeProcesses processes{dispatch};
    NoRouting routing;
    support::NotificationCenter notifications;
    TunnelStore store{*defaults, clock};
    KeyManager keys{*defaults};
    TagManager tags{*defaults};
    fakes::QuietPlatform platform;
    KeychainStore& keychain = platform.secrets;
    fakes::FakeDialogs dialogs;
    fakes::FakePasteboard pasteboard;
    TunnelManager manager{
        platform.services(dispatch, clock, processes, host, *defaults, notifications, routing)};
    Theme theme{*qApp, Appearance::light};
    MainWindow window{{theme, store, manager, keys, tags, notifications, dispatch, clock, host, keychain,
                       dialogs, pasteboard}};
};

// One key in the search field until the list shows what is left, laid out and painted.
void filterPerKeystroke(benchmark::State& state) {
    Window window;
    auto* field = window.window.findChild<QLineEdit*>(QStringLiteral("sidebarSearchField"));
    QImage frame(window.window.size(), QImage::Format_ARGB32_Premultiplied);
    const QStringList searches{QStringLiteral("p"),  QStringLiteral("pr"), QStringLiteral("pro"),
                               QStringLiteral("pr"), QStringLiteral("p"),  QString()};
    qsizetype next = 0;
    for (auto _ : state) {
        field->setText(searches[next]);
        Q_EMIT field->textEdited(searches[next]);
        window.window.render(&frame);
        next = (next + 1) % searches.size();
    }
}
BENCHMARK(filterPerKeystroke)->Unit(benchmark::kMillisecond);

// One key in a field of the chosen tunnel until it is saved and the window shows it everywhere.
void editPerKeystroke(benchmark::State& state) {
    Window window;
    auto* list = window.window.findChild<QListView*>(QStringLiteral("tunnelList"));
    list->setCurrentIndex(list->model()->index(5, 0));
    window.dispatch.runMain();
    auto* field = window.window.findChild<QLineEdit*>(QStringLiteral("configNameField"));
    QImage frame(window.window.size(), QImage::Format_ARGB32_Premultiplied);
    bool longer = true;
    for (auto _ : state) {
        longer ? field->insert(QStringLiteral("x")) : field->backspace();
        longer = !longer;
        window.dispatch.advance(Coalescer::kInterval); // or the next ones would be gathered
        window.window.render(&frame);
    }
}
BENCHMARK(editPerKeystroke)->Unit(benchmark::kMillisecond);

// One step of the wheel, painted.
void scrollFrame(benchmark::State& state) {
    Window window;
    auto* list = window.window.findChild<QListView*>(QStringLiteral("tunnelList"));
    QImage frame(list->size(), QImage::Format_ARGB32_Premultiplied);
    auto* bar = list->verticalScrollBar();
    for (auto _ : state) {
        bar->setValue(bar->value() + 57 < bar->maximum() ? bar->value() + 57 : 0);
        list->render(&frame);
    }
}
BENCHMARK(scrollFrame)->Unit(benchmark::kMillisecond);

// A change of one tunnel's status until the counts and its row are up to date.
void statusChange(benchmark::State& state) {
    Window window;
    const auto id = window.store.tunnels()[5].id;
    for (auto _ : state) {
        window.manager.statusChanged.emit(id);
        window.store.announceChange();
        window.dispatch.advance(Coalescer::kInterval); // or the next ones would be gathered
    }
}
BENCHMARK(statusChange)->Unit(benchmark::kMillisecond);

// From the first click on the menu-bar icon, which makes the popover, until it is painted.
void openPopover(benchmark::State& state) {
    Window window(kTunnelsInPopover);
    MenuBarCommands commands{{window.theme, window.store, window.manager, window.dispatch, {}}};
    TunnelTally tally{window.store, window.manager, window.dispatch};
    for (auto _ : state) {
        MenuBarExtraWindow popover(commands, tally);
        popover.openBeside(QRect(700, 0, 22, 22));
        QApplication::processEvents();
        QImage frame(popover.size(), QImage::Format_ARGB32_Premultiplied);
        popover.render(&frame);
    }
}
BENCHMARK(openPopover)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
