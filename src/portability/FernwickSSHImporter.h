// Makes tunnels of the profiles that Fernwick SSH exports. A profile has any number of forwardings and a tunnel
// has one, so what fits is taken, and the tunnel's notes say where it is from. Nothing is stored here
// (ImportMerge.h). Threads: main thread only.
#pragma once

#include "catalogue/Tunnel.h"
#include "platform/Clock.h"
#include "platform/Dialogs.h"
#include "platform/FileSystem.h"
#include "portability/ImportError.h"
#include "portability/TarnlineFile.h"

#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fernwick {

class FernwickSSHImporter {
public:
    using Result = std::expected<std::vector<Tunnel>, ImportError>;
    using Completion = std::function<void(Result)>;

    // All of them outlive the panels that are opened here; the importer need not.
    FernwickSSHImporter(platform::Dialogs& dialogs, platform::FileSystem& files, const platform::Clock& clock)
        : dialogs_(dialogs), files_(files), clock_(clock) {}

    // Asks for a file and reads it. The completion is called once, later: with the tunnels in the file's order,
    // of which there may be none, or with the error. A panel goes with its window; then nobody is told.
    void importFile(Completion completion) const;

    // The tunnels of a file's bytes; only ever invalidFile as the error. Created now.
    [[nodiscard]] Result parse(std::string_view data) const;

    // The tunnel of a profile; none without an address or a user. An id that is no UUID becomes a new one.
    [[nodiscard]] std::optional<Tunnel> makeTunnel(const TarnlineProfile& profile) const;

private:
    [[nodiscard]] Result readFile(const std::optional<std::string>& path) const;

    platform::Dialogs& dialogs_;
    platform::FileSystem& files_;
    const platform::Clock& clock_;
};

} // namespace fernwick
