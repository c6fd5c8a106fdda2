#include "updating/UpdateInstall.h"

#include "support/Uuid.h"

#include <algorithm>
#include <string_view>

namespace fernwick {

namespace {

constexpr const char* kNoApplication = "Valid app (.app) not found in the selected file.";

std::unexpected<std::string> updateError(const std::string& description) {
    return std::unexpected("Update Error: " + description);
}

std::string_view fileName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

std::string parentOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
}

// Whether the extension is "zip" in any case. A dot that begins the name begins no extension.
bool isZip(std::string_view path) {
    const auto name = fileName(path);
    const auto dot = name.rfind('.');
    return dot != std::string_view::npos && dot > 0 &&
           std::ranges::equal(name.substr(dot + 1), std::string_view("zip"),
                              [](char c, char wanted) { return (c | 0x20) == wanted; });
}

// The application in the unpacked archive; only the top of it is looked at.
std::expected<std::string, std::string> unpack(const UpdateInstallServices& services,
                                               const std::string& archive, const std::string& folder) {
    // Its exit status says nothing that counts: what is needed is there or it is not.
    if (const auto run = services.commands.run(services.system.unpacking(archive, folder)); !run) {
        return updateError(run.error().description);
    }
    const auto names = services.items.names(folder);
    if (!names) {
        return std::unexpected(kNoApplication);
    }
    const auto found =
        std::ranges::find_if(*names, [](const std::string& name) { return name.ends_with(".app"); });
    if (found == names->end()) {
        return std::unexpected(kNoApplication);
    }
    return folder + "/" + *found;
}

std::expected<void, std::string> start(const UpdateInstallServices& services, const std::string& script,
                                       bool asAdministrator) {
    if (asAdministrator) {
        if (const auto started = services.system.startAsAdministrator(script); !started) {
            return std::unexpected("Requires permission to update application: " + started.error().message);
        }
        return {};
    }
    const auto run =
        services.commands.run({.executable = "/bin/bash", .arguments = {"-c", updateShellLine(script)}});
    return run ? std::expected<void, std::string>{} : updateError(run.error().description);
}

} // namespace

std::expected<void, std::string> takeDownload(const UpdateInstallServices& services,
                                              const std::string& downloaded, const std::string& archive) {
    (void)services.items.remove(archive); // there may be none, and what cannot go makes the move fail
    if (const auto moved = services.items.move(downloaded, archive); !moved) {
        (void)services.items.remove(downloaded); // nobody knows its name, so nobody else would
        return std::unexpected("Failed to move zip file: " + moved.error().description);
    }
    return {};
}

std::expected<void, std::string> installArchive(const UpdateInstallServices& services,
                                                const std::string& archive) {
    const auto folder = services.temporaryFolder + "/FernwickUpdate_" + support::Uuid::random().text();
    if (const auto made = services.files.makeFolder(folder); !made) {
        return updateError(made.error().description);
    }
    const auto source = isZip(archive) ? unpack(services, archive, folder) : archive;
    if (!source) {
        return std::unexpected(source.error());
    }
    const auto target = services.bundle.path();
    const bool needsAdmin = !services.items.isWritable(target) || !services.items.isWritable(parentOf(target));
    const auto script = folder + "/update.sh";
    const auto text =
        services.system.script({.target = target, .source = *source, .asAdministrator = needsAdmin});
    if (const auto written = services.files.write(script, text, kUpdateScriptMode); !written) {
        return updateError(written.error().description);
    }
    return start(services, script, needsAdmin);
}

std::string updateShellLine(const std::string& scriptPath) {
    return "nohup \"" + scriptPath + "\" > /dev/null 2>&1 & disown";
}

} // namespace fernwick
