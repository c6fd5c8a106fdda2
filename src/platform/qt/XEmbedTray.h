// The tray of the X server's first screen (System Tray Protocol Specification, freedesktop.org). Its owner
// holds a selection, and a new owner sends a MANAGER message to the root window, which the toolkit listens to
// anyway. Threads: main thread only.
#pragma once

#include <QAbstractNativeEventFilter>

#include <cstdint>
#include <functional>

namespace fernwick::platform {

class XEmbedTray final : public QAbstractNativeEventFilter {
public:
    XEmbedTray() = default;
    XEmbedTray(const XEmbedTray&) = delete;
    XEmbedTray& operator=(const XEmbedTray&) = delete;
    ~XEmbedTray() override;

    // Called when a tray comes while it is watched for. Where the display is no X server's, never.
    std::function<void()> onAppeared;

    void watch();
    void unwatch();

    // Whether there is a tray at this moment; asks the X server, and waits for its answer.
    [[nodiscard]] bool isPresent() const;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    bool watching_ = false;
    std::uint32_t manager_ = 0;   // the X server's number for the word MANAGER
    std::uint32_t selection_ = 0; // the same for the selection of the tray's owner
};

} // namespace fernwick::platform
