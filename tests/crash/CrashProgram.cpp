// The application without its windows: its stores and what carries the catalogue, on its own backends. It loads
// what is stored, tells how much that is, and then saves, backs up and restores until it is killed.
// CRASH-PROGRAM SEED
#include "JournalDefaults.h"
#include "catalogue/KeyManager.h"
#include "catalogue/TagManager.h"
#include "catalogue/TunnelStore.h"
#include "platform/posix/FileUserDefaults.h"
#include "platform/posix/PosixFileSystem.h"
#include "platform/posix/PosixHostEnvironment.h"
#include "platform/posix/SystemClock.h"
#include "platform/qt/QtDispatch.h"
#include "portability/SyncManager.h"
#include "routing/ProxyRuleStore.h"
#include "support/FakeCloudStore.h"
#include "support/FakePlatform.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace fernwick::crash {

namespace {

constexpr std::string_view kDomain = "com.fernwick.Fernwick";
// Enough that a file is some hundred kilobytes, and being written most of the time.
constexpr std::size_t kTunnels = 600;
constexpr std::size_t kRules = 300;
constexpr std::size_t kFew = 20;

class Program {
public:
    explicit Program(unsigned seed) : random_(seed) {
        sync_.settings().setMaxBackupCount(3);
        tell("loaded " + std::to_string(store_.tunnels().size()) + " " + std::to_string(tags_.tags().size()) +
             " " + std::to_string(keys_.keys().size()) + " " + std::to_string(rules_.proxies().size()) + " " +
             std::to_string(rules_.rules().size()));
        timer_ = dispatch_.repeatingTimer(platform::Duration(1), [this] { step(); });
    }

private:
    // One of the things that write, by chance.
    void step() {
        switch (random_() % 8) {
        case 0:
            sync_.runBackup(
                [](bool done, const std::string& text) { tell(done ? "backup " + text : "failed " + text); });
            break;
        case 1:
            restoreNewest();
            break;
        case 2:
            defaults_.synchronize();
            break;
        default:
            change();
        }
    }

    void restoreNewest() {
        const auto& entries = sync_.state().backupEntries;
        if (!entries.empty()) {
            sync_.restoreBackup(entries.front().url, [](bool done, const std::string& text) {
                tell((done ? "restored " : "failed ") + text);
            });
        }
    }

    // One more of a list, and the first one goes when there are enough.
    void change() {
        const auto name = std::to_string(random_());
        switch (random_() % 4) {
        case 0:
            addTunnel(name);
            break;
        case 1:
            addRule(name);
            break;
        case 2:
            keys_.add({.id = support::Uuid::random(),
                       .name = name,
                       .path = "/keys/" + name,
                       .comment = {},
                       .addedAt = clock_.now()});
            if (keys_.keys().size() > kFew) {
                keys_.remove(keys_.keys().front().id);
            }
            break;
        default:
            tags_.tags().push_back({.id = support::Uuid::random(), .name = name, .colorHex = "#0A84FF"});
            if (tags_.tags().size() > kFew) {
                tags_.tags().erase(tags_.tags().begin());
            }
            tags_.save();
        }
    }

    void addTunnel(const std::string& name) {
        Tunnel tunnel;
        tunnel.id = support::Uuid::random();
        tunnel.name = name;
        tunnel.notes.assign(200, 'n');
        store_.add(std::move(tunnel));
        if (store_.tunnels().size() > kTunnels) {
            store_.remove(store_.tunnels().front().id);
        }
    }

    void addRule(const std::string& name) {
        auto rule = AppRule::create();
        rule.name = name;
        rule.targetHosts.assign(10, "host-" + name + ".example");
        rules_.addRule(std::move(rule));
        if (rules_.rules().size() > kRules) {
            rules_.deleteRule(rules_.rules().front().id);
        }
        auto proxy = ProxyConfig::create();
        proxy.name = name;
        rules_.addProxy(std::move(proxy));
        if (rules_.proxies().size() > kFew) {
            rules_.deleteProxy(rules_.proxies().front().id);
        }
    }

    std::mt19937 random_;
    platform::SystemClock clock_;
    platform::PosixHostEnvironment host_;
    platform::PosixFileSystem files_;
    platform::QtDispatch dispatch_;
    platform::FileUserDefaultsProvider provider_{dispatch_, host_};
    support::NotificationCenter notifications_;
    fakes::FakeDialogs dialogs_;
    fakes::FakeCloudStore cloud_{dispatch_};
    JournalDefaults defaults_{provider_.open(kDomain)};
    TunnelStore store_{defaults_, clock_};
    KeyManager keys_{defaults_};
    TagManager tags_{defaults_};
    ProxyRuleStore rules_{defaults_, dispatch_};
    SyncManager sync_{{.defaults = defaults_,
                       .dispatch = dispatch_,
                       .clock = clock_,
                       .files = files_,
                       .dialogs = dialogs_,
                       .cloud = cloud_,
                       .notifications = notifications_,
                       .host = host_,
                       .rules = rules_}};
    std::unique_ptr<platform::Timer> timer_;
};

} // namespace

} // namespace fernwick::crash

int main(int count, char** arguments) {
    QCoreApplication application(count, arguments);
    const fernwick::crash::Program program(count > 1 ? static_cast<unsigned>(std::atoi(arguments[1])) : 1);
    return QCoreApplication::exec();
}
