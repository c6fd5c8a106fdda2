// The tabs of the settings window and what belongs to each. A page is made when its tab is shown for the first
// time, and owns what is edited on it. Threads: main thread only.
#pragma once

#include "screens/settings/SettingsContext.h"
#include "screens/settings/SettingsTabBar.h"

#include <QWidget>

#include <array>

class QStackedWidget;

namespace fernwick {

class GeneralSettingsView;

class SettingsView final : public QWidget {
public:
    SettingsView(SettingsContext context, QWidget* parent);

    [[nodiscard]] SettingsTab selectedTab() const { return tabs_->selectedTab(); }
    void select(SettingsTab tab) { tabs_->select(tab); }

    // The page of a tab, or null if the tab has not been shown yet.
    [[nodiscard]] QWidget* page(SettingsTab tab) const { return made_.at(static_cast<std::size_t>(tab)); }

    // Shows what came of asking for a newer version, in the tab "General".
    void showUpdateOutcome(const std::string& text);

private:
    void turnTo(SettingsTab tab);
    [[nodiscard]] QWidget* makePage(SettingsTab tab);

    SettingsContext context_;
    SettingsTabBar* tabs_ = nullptr;
    QStackedWidget* pages_ = nullptr;
    std::array<QWidget*, 5> made_{};
    GeneralSettingsView* general_ = nullptr;
};

} // namespace fernwick
