// The tab "General": where the application shows itself, what it does at the login, and its version.
// Threads: main thread only.
#pragma once

#include "screens/detail/FormPage.h"
#include "screens/settings/LaunchAtLogin.h"
#include "screens/settings/SettingsContext.h"

class QLabel;

namespace fernwick {

class LongTextView;
class Switch;
struct SwitchPreference;

class GeneralSettingsView final : public FormPage {
public:
    GeneralSettingsView(const SettingsContext& context, QWidget* parent);

    // Shows what came of asking for a newer version, as plain text, and tells it to those who do not see the
    // screen. Empty text takes it away.
    void showUpdateOutcome(const std::string& text);

private:
    void addAppearance();
    void addStartup();
    void addDefaults();
    void addUpdate();
    void addAbout();
    void addRow(FormSection& section, const QString& label, QWidget* control);
    [[nodiscard]] QWidget* makeDisplayOptions(QWidget* parent);
    [[nodiscard]] Switch* makeSwitch(const char* objectName, bool on, std::function<void(bool)> thrown);
    [[nodiscard]] Switch* makeSwitch(const char* objectName, const SwitchPreference& preference);

    SettingsContext context_;
    Switch* loginSwitch_ = nullptr;
    LaunchAtLogin launchAtLogin_;
    QLabel* outcome_ = nullptr;
    LongTextView* longOutcome_ = nullptr; // in its place for a text that is longer than a label should be
};

} // namespace fernwick
