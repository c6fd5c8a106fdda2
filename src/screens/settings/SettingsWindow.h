// The settings window. Threads: main thread only.
#pragma once

#include "screens/settings/SettingsView.h"

#include <functional>

namespace fernwick {

class SettingsWindow final : public QWidget {
public:
    static constexpr int kWidth = 680;
    static constexpr int kHeight = 670;
    static constexpr int kMinimumWidth = 620;
    static constexpr int kMinimumHeight = 500;

    explicit SettingsWindow(const SettingsContext& context);

    [[nodiscard]] SettingsView& view() { return *view_; }

    // Called when the window is closed.
    std::function<void()> onClose;

protected:
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void addShortcuts();

    const Theme& theme_;
    SettingsView* view_;
};

} // namespace fernwick
