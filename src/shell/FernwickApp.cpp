#include "shell/FernwickApp.h"

#include "catalogue/KeyManager.h"
#include "catalogue/KeychainStore.h"
#include "catalogue/TagManager.h"
#include "catalogue/TunnelStore.h"
#include "platform/AppNotifications.h"
#include "platform/ThreadName.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DesktopEntryApplications.h"
#include "platform/linux/DesktopProxySettings.h"
#include "platform/linux/EngineService.h"
#include "platform/linux/FolderCloudStore.h"
#include "platform/linux/PkexecShell.h"
#include "platform/linux/RouteNetworkMonitor.h"
#include "platform/modules/LazyModule.h"
#include "platform/posix/FileUserDefaults.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixFileItems.h"
#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/PosixHostEnvironment.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/posix/SystemClock.h"
#include "platform/posix/TerminationSignals.h"
#include "platform/qt/DBusSingleInstance.h"
#include "platform/qt/FileManagerDesktop.h"
#include "platform/qt/LogindPowerEvents.h"
#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtDispatch.h"
#include "platform/qt/QtPasteboard.h"
#include "platform/qt/QtTrayHost.h"
#include "portability/MigrationManager.h"
#include "routing/Routing.h"
#include "screens/routing/ProxyRuleWindowController.h"
#include "screens/routing/RuleEditView.h"
#include "screens/settings/SettingsWindowController.h"
#include "screens/theme/Theme.h"
#include "shell/AppDelegate.h"
#include "shell/HiddenStart.h"
#include "shell/MainWindowScene.h"
#include "shell/MenuBarExtra.h"
#include "shell/SyncScene.h"
#include "shell/UpdateScene.h"
#include "shell/WindowManager.h"
#include "support/NotificationCenter.h"
#include "tunnel/TunnelManager.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace fernwick {

namespace {

constexpr std::string_view kDefaultsDomain = "com.fernwick.Fernwick";

// How long background work may still take when the application has ended and its commands were abandoned.
constexpr platform::Duration kLastWorkLimit{500};

// Qt aborts the process when it can open no display; a person is better served by a sentence.
void explainMissingDisplay(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message) {
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
    if (type == QtFatalMsg) {
        std::fputs("Fernwick: no display could be opened. Start it in a desktop session, or set DISPLAY.\n",
                   stderr);
        std::_Exit(EXIT_FAILURE);
    }
}

std::string programFolder() {
    return QCoreApplication::applicationDirPath().toStdString();
}

// What a person calls the record with that id; empty when it is gone.
template <class Record>
std::string nameOf(const std::vector<Record>& records, const support::Uuid& id) {
    const auto found = std::ranges::find(records, id, &Record::id);
    return found != records.end() ? found->name : std::string();
}

// Where the engine's program and Homebrew are looked for, in this order; the program beside the application
// first.
std::vector<std::string> engineCandidates() {
    return {programFolder() + "/mihomo", "/home/linuxbrew/.linuxbrew/bin/mihomo", "/usr/local/bin/mihomo",
            "/usr/bin/mihomo"};
}
std::vector<std::string> brewCandidates() {
    return {"/home/linuxbrew/.linuxbrew/bin/brew", "/opt/homebrew/bin/brew", "/usr/local/bin/brew"};
}

} // namespace

// What is asked of the operating system; it stands before any store reads the preferences.
struct FernwickApp::Backends {
    platform::SystemClock clock;
    platform::PosixHostEnvironment host;
    platform::QtDispatch dispatch;
    platform::ChildLauncher launcher;
    platform::PosixProcesses processes{dispatch, launcher};
    platform::PosixCommandRunner commands{launcher};
    platform::PosixFileSystem files;
    platform::LazyHttpClient http{programFolder(), dispatch};
    std::unique_ptr<platform::ServiceControl> engineService = makeEngineService(files, commands, host);
    platform::PkexecShell administrator{commands};
    platform::DesktopProxySettings proxySettings{commands, host, files};
    platform::LazyKeychain keychain{programFolder(), host};
    platform::DesktopEntryApplications applications{host};
    platform::LogindPowerEvents power{dispatch, host};
    platform::DBusSingleInstance instance{host};
    platform::FileUserDefaultsProvider defaultsProvider{dispatch, host};
    support::NotificationCenter notifications;
    platform::QtDialogs dialogs;
    platform::QtPasteboard pasteboard;
    platform::QtTrayHost tray{host};
    platform::FolderCloudStore cloud{dispatch, host};
    platform::AutostartEntry loginItem{files, host, QCoreApplication::applicationFilePath().toStdString()};
    platform::FileManagerDesktop desktop{host};

    // The preferences, with what the predecessor left in them; what it left in files stands by then too.
    [[nodiscard]] std::unique_ptr<platform::UserDefaults> openDefaults() {
        auto defaults = defaultsProvider.open(kDefaultsDomain);
        platform::PosixFileItems items;
        const auto support = std::filesystem::path(host.supportFolder());
        MigrationManager({.defaults = *defaults,
                          .provider = defaultsProvider,
                          .files = files,
                          .items = items,
                          .supportFolders = {support.parent_path().string()}})
            .migrateIfNeeded();
        return defaults;
    }
};

// The application's state and windows, in the order in which they come to life.
struct FernwickApp::Scene {
    Scene(QApplication& application, Backends& backends)
        : theme(application),
          defaults(backends.openDefaults()),
          rules(*defaults, backends.dispatch),
          routing({.engine = {.dispatch = backends.dispatch,
                              .clock = backends.clock,
                              .files = backends.files,
                              .commands = backends.commands,
                              .http = backends.http,
                              .service = *backends.engineService,
                              .administrator = backends.administrator,
                              .host = backends.host,
                              .binaryCandidates = engineCandidates(),
                              .bundle = programFolder()},
                   .processes = backends.processes,
                   .proxySettings = backends.proxySettings,
                   .rules = rules,
                   .brewCandidates = brewCandidates(),
                   .tunnelPortMap = [this] { return tunnels.tunnelPortMap(); }}),
          store(*defaults, backends.clock),
          keychain(
              backends.keychain, [this](const support::Uuid& id) { return nameOf(store.tunnels(), id); },
              [this](const support::Uuid& id) { return nameOf(keys.keys(), id); }),
          tunnels({backends.dispatch, backends.clock, backends.processes, backends.host, *defaults,
                   backends.notifications, routing, backends.commands, backends.files, keychain, backends.power,
                   std::make_unique<platform::RouteNetworkMonitor>()}),
          keys(*defaults),
          tags(*defaults),
          delegate(backends.dispatch, routing),
          windows(backends.dispatch, delegate),
          routingContext{theme, rules, tunnels, backends.dispatch, backends.applications},
          proxyRules(routingContext,
                     [this](QWidget* parent, const TunnelNames& names, std::optional<AppRule> rule) {
                         (new RuleEditView(routingContext, names, std::move(rule), parent))->open();
                     }),
          sync(theme,
               {.defaults = *defaults,
                .dispatch = backends.dispatch,
                .clock = backends.clock,
                .files = backends.files,
                .dialogs = backends.dialogs,
                .cloud = backends.cloud,
                .notifications = backends.notifications,
                .host = backends.host,
                .rules = rules},
               store, backends.host.supportFolder() + "/Cloud"),
          updates(theme,
                  {.dispatch = backends.dispatch,
                   .http = backends.http,
                   .files = backends.files,
                   .commands = backends.commands,
                   .administrator = backends.administrator,
                   .host = backends.host},
                  [this](const std::string& text) { settings.showUpdateOutcome(text); }),
          settings({.theme = theme,
                    .keys = keys,
                    .tags = tags,
                    .keychain = keychain,
                    .defaults = *defaults,
                    .loginItem = backends.loginItem,
                    .desktop = backends.desktop,
                    .dialogs = backends.dialogs,
                    .files = backends.files,
                    .dispatch = backends.dispatch,
                    .clock = backends.clock,
                    .host = backends.host,
                    .checkForUpdates = [this] { updates.check(false); },
                    .makeSyncPage = [this](QWidget* parent) { return sync.makePage(parent); },
                    .bundleVersion = [this] { return updates.version(); }}),
          mainWindow({theme, store, tunnels, keys, tags, backends.notifications, backends.dispatch,
                      backends.clock, backends.host, keychain, backends.dialogs, backends.pasteboard,
                      [this](const auto& pairs) {
                          TunnelNames names;
                          for (const auto& [id, name] : pairs) {
                              names.push_back({id, name});
                          }
                          proxyRules.show(std::move(names));
                      },
                      [this] { settings.show(); }},
                     routing, delegate, windows),
          menuBar({theme,
                   store,
                   tunnels,
                   backends.dispatch,
                   {.openProxyRules = [this](TunnelNames names) { proxyRules.show(std::move(names)); },
                    .openMainWindow = [this] { windows.openMainWindow(); },
                    .openSettings = [this] { settings.show(); },
                    .quit = [] { QCoreApplication::quit(); }}},
                  backends.tray) {
        delegate.setUpdateCheck([this] { updates.check(true); });
    }

    Theme theme;
    std::unique_ptr<platform::UserDefaults> defaults;
    ProxyRuleStore rules;
    Routing routing;
    TunnelStore store;
    KeychainStore keychain;
    TunnelManager tunnels;
    KeyManager keys;
    TagManager tags;
    AppDelegate delegate;
    WindowManager windows;
    RoutingContext routingContext;
    ProxyRuleWindowController proxyRules;
    SyncScene sync;
    UpdateScene updates;
    SettingsWindowController settings;
    MainWindowScene mainWindow;
    MenuBarExtra menuBar;
};

FernwickApp::FernwickApp(QApplication& application)
    : application_(application), backends_(std::make_unique<Backends>()) {
    application_.setQuitOnLastWindowClosed(false);
}

FernwickApp::~FernwickApp() = default;

int FernwickApp::run() {
    using Instance = platform::SingleInstance;
    const auto start = QCoreApplication::arguments().contains(QLatin1String(platform::kHiddenArgument.data()))
                           ? Instance::Start::hidden
                           : Instance::Start::shown;
    if (backends_->instance.claim(start) == Instance::Claim::second) {
        return EXIT_SUCCESS;
    }
    const platform::TerminationSignals signals(backends_->dispatch, [this] { application_.quit(); });
    scene_ = std::make_unique<Scene>(application_, *backends_);
    const auto reopened = backends_->instance.reopened.connect([this] {
        scene_->delegate.applicationShouldHandleReopen(scene_->mainWindow.isVisible());
        if (scene_->delegate.mainWindow() == nullptr) { // none was opened since a hidden start
            scene_->windows.openMainWindow();
        }
    });
    QObject::connect(&application_, &QCoreApplication::aboutToQuit, &application_, [this] { terminate(); });
    backends_->power.start();
    scene_->delegate.applicationDidFinishLaunching();
    std::optional<HiddenStart> hidden;
    if (start == Instance::Start::hidden) {
        scene_->mainWindow.stayHidden();
        hidden.emplace(backends_->tray, backends_->dispatch, [this] { scene_->mainWindow.open(); });
    } else {
        scene_->mainWindow.open();
    }
    scene_->menuBar.start();
    const int status = QApplication::exec();
    // What works in the background works on the scene. A command that hangs is waited for by nobody.
    backends_->commands.abandonAll();
    if (!backends_->dispatch.finishGlobal(kLastWorkLimit)) {
        leaveAtOnce(status);
    }
    hidden.reset();
    scene_.reset();
    return status;
}

void FernwickApp::leaveAtOnce(int status) {
    scene_->defaults->synchronize();
    std::fflush(nullptr);
    std::_Exit(status);
}

void FernwickApp::terminate() {
    backends_->notifications.post(platform::kApplicationWillTerminate);
    scene_->menuBar.remove();
    scene_->delegate.applicationWillTerminate();
}

int FernwickApp::main(int argc, char** argv) {
    // Started by a link, the process would be called as the link is; the update's script looks for this name.
    platform::nameThisThread("Fernwick");
    QCoreApplication::setApplicationName(QStringLiteral("Fernwick"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FERNWICK_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.fernwick.Fernwick"));
    const auto previous = qInstallMessageHandler(explainMissingDisplay);
    QApplication application(argc, argv);
    qInstallMessageHandler(previous);
    return FernwickApp(application).run();
}

} // namespace fernwick
