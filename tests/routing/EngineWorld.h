// An engine among fakes, and what a test of it looks at.
#pragma once

#include "routing/ClashEngine.h"
#include "support/FakeClock.h"
#include "support/FakeCommandRunner.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeHttpClient.h"
#include "support/FakeServiceControl.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

using Texts = std::vector<std::string>;

inline constexpr const char* kEngineProgram = "/usr/bin/mihomo";
inline constexpr const char* kEngineFolder = "/home/someone/.local/share/Fernwick/clash";
inline constexpr const char* kEngineConfig = "/home/someone/.local/share/Fernwick/clash/config.yaml";

struct EngineWorld {
    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeFileSystem files;
    fakes::FakeCommandRunner commands;
    fakes::FakeHttpClient http{dispatch};
    fakes::FakeServiceControl service{files};
    fakes::FakeAdministratorShell administrator;
    fakes::FakeHostEnvironment host;
    Texts printed;
    std::unique_ptr<ClashEngine> engine;

    // A machine with the engine's program on it, unless told otherwise, whose clock shows UTC.
    explicit EngineWorld(bool hasProgram = true) {
        setenv("TZ", "UTC", 1); // NOLINT(concurrency-mt-unsafe): no other thread runs
        tzset();
        if (hasProgram) {
            files.files[kEngineProgram] = {"program", 0755};
        }
        engine = std::make_unique<ClashEngine>(services());
        dispatch.runAll();
    }

    EngineServices services() {
        return {.dispatch = dispatch,
                .clock = clock,
                .files = files,
                .commands = commands,
                .http = http,
                .service = service,
                .administrator = administrator,
                .host = host,
                .binaryCandidates = {"/opt/fernwick/mihomo", "/home/linuxbrew/.linuxbrew/bin/mihomo",
                                     "/usr/local/bin/mihomo", "/usr/bin/mihomo"},
                .bundle = "/opt/fernwick",
                .print = [this](std::string_view line) { printed.emplace_back(line); }};
    }

    // Starts the engine, whose API answers at once.
    void bringUp(const std::string& config = "first") {
        http.answer(200);
        engine->start(config);
        using namespace std::chrono_literals;
        dispatch.advance(1800ms);
        http.forget();
    }

    // The log without its times.
    [[nodiscard]] Texts messages() const {
        Texts texts;
        for (const auto& line : engine->logs()) {
            texts.push_back(line.substr(std::string_view("[00:00:00] ").size()));
        }
        return texts;
    }

    // How often the log has that line.
    [[nodiscard]] auto count(const std::string& message) const {
        return std::ranges::count(messages(), message);
    }

    [[nodiscard]] std::string lastMessage() const {
        return engine->logs().empty() ? "(nothing)" : messages().back();
    }

    // How often a call to the service begins with `text`.
    [[nodiscard]] auto calls(std::string_view text) const {
        return std::ranges::count_if(service.calls(), [&](const auto& call) { return call.starts_with(text); });
    }

    [[nodiscard]] std::string writtenConfig() const {
        const auto found = files.files.find(kEngineConfig);
        return found != files.files.end() ? found->second.bytes : "(nothing)";
    }
};

} // namespace fernwick
