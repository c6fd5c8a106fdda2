// The proxy engine (mihomo) from the application's side: finds its program, writes its configuration, has it
// installed as a service of the system, starts, watches, reloads and stops it. Nothing is thrown or returned
// when something fails: it ends in a line of the log and a status. Threads: main thread, unless an operation
// says otherwise.
#pragma once

#include "platform/AdministratorShell.h"
#include "platform/Clock.h"
#include "platform/CommandRunner.h"
#include "platform/Dispatch.h"
#include "platform/HostEnvironment.h"
#include "platform/HttpClient.h"
#include "platform/ServiceControl.h"
#include "routing/ClashEngineStatus.h"
#include "routing/EngineLog.h"
#include "support/Signal.h"
#include "support/StandardOutput.h"
#include "support/Weak.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace fernwick {

// What the engine needs of the rest of the application; all of it outlives the engine.
struct EngineServices {
    platform::Dispatch& dispatch;
    const platform::Clock& clock;
    platform::FileSystem& files;
    platform::CommandRunner& commands;
    platform::HttpClient& http;
    platform::ServiceControl& service;
    platform::AdministratorShell& administrator;
    const platform::HostEnvironment& host;
    std::vector<std::string> binaryCandidates; // absolute paths; the first that exists is the engine's program
    std::string bundle;                        // where the application is, for the log
    support::PrintLine print = support::printLine;
    std::string apiBase = "http://127.0.0.1:9090"; // as the configuration's external-controller has it
};

class ClashEngine {
public:
    // Makes the folder of the configuration, and looks for the engine's program once and for all.
    explicit ClashEngine(EngineServices services);
    ClashEngine(const ClashEngine&) = delete;
    ClashEngine& operator=(const ClashEngine&) = delete;

    // Applies a configuration: reloads a running engine; any other is started, and before that installed, for
    // which the system may ask a person. A call during a start goes the whole way once more, but for a prompt
    // that is open: nobody is asked twice at a time.
    void start(std::string config);

    // Writes the configuration and has the running engine load it. An engine that refuses is restarted with it.
    void reload(std::string config);

    // Ends the engine; it stays installed. Any thread, while the engine lives. `asked` is called on a
    // background queue once the system took the request.
    void stop(std::function<void()> asked = {});

    // Adds a line to the log and prints it. Any thread, while the engine lives.
    void addLog(std::string_view message) { log_.add(message); }

    [[nodiscard]] const ClashEngineStatus& status() const { return status_; }

    // The newest 500 lines, newest last, each as "[HH:mm:ss] message".
    [[nodiscard]] const std::deque<std::string>& logs() const { return log_.lines(); }
    [[nodiscard]] EngineLog& log() { return log_; }

    // The path of the configuration file.
    [[nodiscard]] const std::string& configURL() const { return program_.configuration; }

    // The path of the engine's program; nothing when none was there at the construction.
    [[nodiscard]] const std::optional<std::string>& mihomoURL() const { return mihomoURL_; }

    // Emitted after the status was assigned, the same one included.
    support::Signal<> statusChanged;

private:
    using Installation = platform::ServiceInstallation;

    void findBinary();
    void writeConfig(const std::string& config);
    void setStatus(ClashEngineStatus status);
    void setStatusLater(ClashEngineStatus status);
    void prepareDaemon();
    void installDaemon(Installation installation);
    void installationEnded(Installation installation,
                           const std::expected<void, platform::AdministratorError>& outcome);
    void installationFailed();
    void launch();
    void waitForReady(int retries, platform::Duration delay);
    void retriesAreOver();
    void startHealthTimer();
    void reloaded(const platform::HttpResult& result, std::string config);

    EngineServices services_;
    EngineLog log_;
    ClashEngineStatus status_;
    std::optional<std::string> mihomoURL_;
    platform::ServiceProgram program_;
    bool installing_ = false;                      // a prompt is open
    std::unique_ptr<platform::Timer> healthTimer_; // present while the engine runs
    std::shared_ptr<std::mutex> serviceTurn_;      // the service starts or ends one at a time
    support::WeakSource<ClashEngine> self_{*this};
};

} // namespace fernwick
