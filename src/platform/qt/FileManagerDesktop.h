// The desktop's file manager, by the File Manager D-Bus Interface (freedesktop.org): ShowItems of
// org.freedesktop.FileManager1 on the session bus, which starts the file manager where that is needed. When
// nobody answers, the folder is opened by whatever the desktop opens folders with. Threads: main thread only,
// which waits for no answer but the bus's greeting, and that at the first use.
#pragma once

#include "platform/Desktop.h"
#include "platform/HostEnvironment.h"

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace fernwick::platform {

class FileManagerDesktop final : public Desktop {
public:
    using Opener = std::function<void(const std::string& folder)>;

    // For so long a file manager may take to answer; long enough for one that has to be started.
    static constexpr std::chrono::milliseconds kPatience{10'000};

    // Reads the host here, and touches no bus. The opener opens a folder, and says nothing when it cannot.
    explicit FileManagerDesktop(const HostEnvironment& host, Opener opener = openFolder,
                                std::chrono::milliseconds patience = kPatience);
    FileManagerDesktop(const FileManagerDesktop&) = delete;
    FileManagerDesktop& operator=(const FileManagerDesktop&) = delete;
    ~FileManagerDesktop() override;

    // The path is absolute; its bytes reach the file manager as they are.
    void reveal(const std::string& path) override;

    // Hands the folder to the desktop (QDesktopServices, which calls xdg-open).
    static void openFolder(const std::string& folder);

private:
    [[nodiscard]] bool isOnBus();

    const QString address_; // of the session bus; empty when there is none
    const QString connectionName_;
    const Opener opener_;
    const std::chrono::milliseconds patience_;
    std::optional<QDBusConnection> bus_;
    QObject answers_; // owns what waits for them
};

} // namespace fernwick::platform
