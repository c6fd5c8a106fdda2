#include "routing/ClashEngine.h"

#include "support/JsonWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <span>
#include <string_view>
#include <utility>

namespace fernwick {

namespace {

using namespace std::chrono_literals;
using platform::Priority;
using platform::ServiceState;

constexpr auto kApiTimeLimit = 60s;
constexpr auto kOrphanGrace = 300ms; // between the end of an orphan and the start of the service
constexpr auto kFirstProbeAfter = 1500ms;
constexpr int kStartProbes = 8;
constexpr auto kStartProbeInterval = 1500ms;
constexpr auto kHealthInterval = 30s;
constexpr int kHealthProbes = 3;
constexpr auto kHealthProbeInterval = 2s;
constexpr auto kRestartDelay = 500ms;

constexpr int kOK = 200;        // what GET /version answers
constexpr int kNoContent = 204; // what PUT /configs answers

// {"path":"..."}; empty when the path is no UTF-8, and then the engine refuses the request.
std::string reloadBody(const std::string& path) {
    support::JsonWriter json;
    json.raw(std::string_view(R"({"path":)"));
    if (!json.write(path)) {
        return {};
    }
    json.raw(std::string_view("}"));
    return json.take();
}

bool isCanceled(std::string_view message) {
    return message.contains(platform::kAdministratorCanceled) || message.contains("-128");
}

} // namespace

ClashEngine::ClashEngine(EngineServices services)
    : services_(std::move(services)),
      log_(services_.dispatch, services_.clock, services_.print),
      serviceTurn_(std::make_shared<std::mutex>()) {
    program_.folder = services_.host.supportFolder() + "/clash";
    program_.configuration = program_.folder + "/config.yaml";
    // Without the folder no configuration can be written, which is not reported either.
    (void)services_.files.makeFolder(program_.folder);
    findBinary();
}

void ClashEngine::findBinary() {
    const auto& candidates = services_.binaryCandidates;
    const auto found =
        std::ranges::find_if(candidates, [this](const auto& path) { return services_.files.exists(path); });
    if (found == candidates.end()) {
        log_.print("❌ mihomo NOT found in any candidate path");
        log_.print("Bundle URL: " + services_.bundle);
        return;
    }
    mihomoURL_ = *found;
    program_.executable = *found;
    log_.print("mihomo found at: " + *found);
}

void ClashEngine::start(std::string config) {
    if (status_ == ClashEngineStatus::running()) {
        reload(std::move(config));
        return;
    }
    if (!mihomoURL_) {
        setStatusLater(ClashEngineStatus::error(
            "mihomo binary not found. Bundle it at Contents/MacOS/mihomo or install via brew"));
        return;
    }
    writeConfig(config);
    prepareDaemon();
}

void ClashEngine::writeConfig(const std::string& config) {
    // The configuration holds passwords. When it cannot be written the engine goes on with the previous one,
    // and by design nobody is told.
    (void)services_.files.write(program_.configuration, config, platform::kOwnerOnlyFile);
    addLog("Config written to: " + program_.configuration);
}

void ClashEngine::setStatus(ClashEngineStatus status) {
    status_ = std::move(status);
    statusChanged.emit();
}

void ClashEngine::setStatusLater(ClashEngineStatus status) {
    services_.dispatch.main([weak = self_.weak(), status = std::move(status)]() mutable {
        if (auto* engine = weak.get()) {
            engine->setStatus(std::move(status));
        }
    });
}

// Starts the daemon, once it is installed as it should be.
void ClashEngine::prepareDaemon() {
    const auto check = services_.service.check(program_.executable);
    switch (check.state) {
    case ServiceState::ready:
        addLog("✅ Daemon đã sẵn sàng");
        launch();
        return;
    case ServiceState::notInstalled:
        addLog("⚙ Lần đầu sử dụng — cần quyền admin để cài proxy engine...");
        installDaemon(Installation::first);
        return;
    case ServiceState::missingRoot:
        addLog("⚠ Daemon thiếu quyền root — cài lại để fix TUN mode...");
        break;
    case ServiceState::corrupt:
        addLog("⚠ Daemon plist bị lỗi — cài lại...");
        break;
    case ServiceState::unreadable:
        addLog("⚠ Không có quyền đọc daemon plist — xin quyền lại...");
        break;
    case ServiceState::pathChanged:
        addLog(fmt::format("⚠ Path thay đổi: {} → {}", check.oldPath, program_.executable));
        addLog("⚙ Cài lại daemon với path mới...");
        break;
    }
    installDaemon(Installation::again);
}

void ClashEngine::installDaemon(Installation installation) {
    if (installing_) {
        return; // a person is being asked already; what that leads to starts the engine with the newest text
    }
    auto prepared = services_.service.prepare(program_, installation);
    if (!prepared) {
        addLog("❌ Failed to write temp plist: " + prepared.error().description);
        installationFailed();
        return;
    }
    if (installation == Installation::again) {
        addLog("⚙ Xin quyền để cập nhật proxy engine (1 lần duy nhất)...");
    }
    installing_ = true;
    services_.dispatch.global(
        Priority::userInitiated,
        [&shell = services_.administrator, &files = services_.files, &dispatch = services_.dispatch,
         prepared = *std::move(prepared), weak = self_.weak(), installation] {
            auto outcome = shell.run(prepared.shellLine);
            (void)files.remove(prepared.temporaryFile); // a leftover among temporary files hurts no one
            dispatch.main([weak, installation, outcome = std::move(outcome)] {
                if (auto* engine = weak.get()) {
                    engine->installationEnded(installation, outcome);
                }
            });
        });
}

void ClashEngine::installationEnded(Installation installation,
                                    const std::expected<void, platform::AdministratorError>& outcome) {
    installing_ = false;
    const bool again = installation == Installation::again;
    if (outcome) {
        addLog(again ? "✅ Daemon đã cài lại thành công (chạy as root)"
                     : "✅ Daemon đã cài thành công (chạy as root)");
        launch();
        return;
    }
    const std::string message = outcome.error().message.empty() ? "Unknown" : outcome.error().message;
    if (isCanceled(message)) {
        addLog("❌ Bạn đã huỷ — proxy engine cần quyền admin để hoạt động");
        addLog("💡 Connect tunnel lại để được hỏi quyền lần nữa");
    } else {
        addLog((again ? "❌ Daemon reinstall failed: " : "❌ Daemon install failed: ") + message);
    }
    installationFailed();
}

void ClashEngine::installationFailed() {
    setStatusLater(ClashEngineStatus::error(
        "Không thể cài proxy engine. Vui lòng thử lại và nhập password khi được hỏi."));
}

void ClashEngine::launch() {
    setStatusLater(ClashEngineStatus::starting());
    addLog("Starting mihomo via launchctl...");
    services_.dispatch.global(Priority::userInitiated,
                              [&commands = services_.commands, &clock = services_.clock,
                               &service = services_.service, &dispatch = services_.dispatch,
                               turn = serviceTurn_, program = program_, weak = self_.weak()] {
                                  // Without pkill, or when nothing runs that it may end, there is no orphan.
                                  if (const auto killed = commands.run({"/usr/bin/pkill", {"-x", "mihomo"}});
                                      killed && killed->status == 0) {
                                      dispatch.main([weak] {
                                          if (auto* engine = weak.get()) {
                                              engine->addLog("Killed orphan mihomo process(es)");
                                          }
                                      });
                                  }
                                  clock.sleep(kOrphanGrace);
                                  {
                                      const std::lock_guard lock(*turn);
                                      service.restart(program);
                                  }
                                  dispatch.mainAfter(kFirstProbeAfter, [weak] {
                                      if (auto* engine = weak.get()) {
                                          engine->waitForReady(kStartProbes, kStartProbeInterval);
                                      }
                                  });
                              });
}

void ClashEngine::waitForReady(int retries, platform::Duration delay) {
    if (retries < 1) {
        retriesAreOver();
        return;
    }
    services_.http.send({.method = "GET", .url = services_.apiBase + "/version", .timeLimit = kApiTimeLimit},
                        [weak = self_.weak(), retries, delay](const platform::HttpResult& result) {
                            auto* engine = weak.get();
                            if (engine == nullptr) {
                                return;
                            }
                            if (result && result->status == kOK) {
                                engine->setStatus(ClashEngineStatus::running());
                                engine->addLog("✅ mihomo is running");
                                engine->startHealthTimer();
                                return;
                            }
                            engine->addLog(
                                fmt::format("⏳ Waiting for mihomo... ({} attempts left)", retries - 1));
                            engine->services_.dispatch.mainAfter(delay, [weak, retries, delay] {
                                if (auto* waiting = weak.get()) {
                                    waiting->waitForReady(retries - 1, delay);
                                }
                            });
                        });
}

void ClashEngine::retriesAreOver() {
    if (status_ == ClashEngineStatus::starting()) {
        setStatus(ClashEngineStatus::error("mihomo không khởi động được. Xem log: /tmp/fernwick-mihomo.log"));
        addLog("❌ mihomo failed to start after multiple attempts");
    } else if (status_ == ClashEngineStatus::running()) {
        addLog("❌ mihomo health check failed. Tự động khởi động lại...");
        launch();
    }
}

void ClashEngine::startHealthTimer() {
    healthTimer_ = services_.dispatch.repeatingTimer(
        kHealthInterval, [this] { waitForReady(kHealthProbes, kHealthProbeInterval); });
}

void ClashEngine::reload(std::string config) {
    writeConfig(config);
    services_.http.send(
        {.method = "PUT",
         .url = services_.apiBase + "/configs?force=true",
         .headers = {{"Content-Type", "application/json"}},
         .body = reloadBody(program_.configuration),
         .timeLimit = kApiTimeLimit},
        [weak = self_.weak(), config = std::move(config)](const platform::HttpResult& result) mutable {
            if (auto* engine = weak.get()) {
                engine->reloaded(result, std::move(config));
            }
        });
}

void ClashEngine::reloaded(const platform::HttpResult& result, std::string config) {
    if (result && result->status == kNoContent) {
        addLog("✅ Config reloaded via API");
        return;
    }
    addLog("⚠ API reload failed, restarting...");
    stop();
    services_.dispatch.mainAfter(kRestartDelay, [weak = self_.weak(), config = std::move(config)]() mutable {
        if (auto* engine = weak.get()) {
            engine->start(std::move(config));
        }
    });
}

void ClashEngine::stop(std::function<void()> asked) {
    // The timer goes in the same turn of the main queue as the status.
    services_.dispatch.global(Priority::userInitiated,
                              [&service = services_.service, turn = serviceTurn_, asked = std::move(asked)] {
                                  {
                                      const std::lock_guard lock(*turn);
                                      service.terminate();
                                  }
                                  if (asked) {
                                      asked();
                                  }
                              });
    services_.dispatch.main([weak = self_.weak()] {
        if (auto* engine = weak.get()) {
            engine->healthTimer_.reset();
            engine->setStatus(ClashEngineStatus::stopped());
        }
    });
    addLog("mihomo stopped");
}

} // namespace fernwick
