// The tabs of the settings window: an icon each, and its title under it.
// Threads: main thread only.
#pragma once

#include "screens/theme/Theme.h"

#include <QTabBar>

#include <functional>

namespace fernwick {

enum class SettingsTab { general, identity, knownHosts, tags, sync };

class SettingsTabBar final : public QTabBar {
public:
    // `selected` is called with the tab that the user turns to.
    SettingsTabBar(const Theme& theme, std::function<void(SettingsTab)> selected, QWidget* parent);

    [[nodiscard]] SettingsTab selectedTab() const { return static_cast<SettingsTab>(currentIndex()); }
    void select(SettingsTab tab) { setCurrentIndex(static_cast<int>(tab)); }

protected:
    [[nodiscard]] QSize tabSizeHint(int index) const override;
    [[nodiscard]] QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void paintEvent(QPaintEvent* event) override;

private:
    void paintTab(QPainter& painter, int index) const;

    const Theme& theme_;
};

} // namespace fernwick
