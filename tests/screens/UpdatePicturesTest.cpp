// Pictures of what the updater shows, for eyes, as those of the main window: in light and dark, at one and at
// two pixels for each of the screen's.
#include "SavedPicture.h"
#include "SettingsBench.h"
#include "UpdateBench.h"

#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

constexpr const char* kNotes = "- Tunnels come back faster after a sleep.\n- The popover opens on the right "
                               "screen.\n- A jump host may have a port of its own.";

class UpdatePictures : public testing::TestWithParam<Appearance> {
protected:
    UpdatePictures() : bench(GetParam()) {}

    void save(const char* dialog, const char* name) {
        bench.settle();
        savePicture(bench.dialog(dialog), "update", name, GetParam());
        bench.dialog(dialog).done(QDialog::Rejected);
        bench.settle();
    }

    UpdateBench bench;
};

TEST_P(UpdatePictures, Questions) {
    bench.ask(UpdateBench::prompt(kNotes));
    save("updatePrompt", "prompt");
    bench.ask(UpdateBench::prompt(""));
    save("updatePrompt", "prompt-without-notes");
    std::string notes;
    for (int number = 1; number <= 200; ++number) {
        notes += "- Fault " + std::to_string(number) + " does not happen any more, whatever the person does.\n";
    }
    bench.ask(UpdateBench::prompt(notes));
    save("updatePrompt", "prompt-long");
    bench.ask(UpdateBench::prompt(notes));
    bench.find<QWidget>("updatePrompt", "updatePromptLongText").setFocus(Qt::TabFocusReason);
    save("updatePrompt", "prompt-long-focused");
    bench.ask(UpdateBench::prompt("<h1>Notes</h1> " + std::string(120, 'w') + "\nגרסה חדשה של היישום"));
    save("updatePrompt", "prompt-odd");
}

TEST_P(UpdatePictures, Alerts) {
    bench.alerts.showInfo("Application Update", "You are using the latest version (3.1.0).");
    save("updateAlert", "latest");
    bench.alerts.showError("Update Error", "Network error: Connection refused");
    save("updateAlert", "error");
    bench.alerts.showError("Update Error", "Valid app (.app) not found in the selected file.");
    save("updateAlert", "error-wrapped");
}

TEST_P(UpdatePictures, Download) {
    const auto window = bench.openWindow();
    bench.showProgress();
    save("updateProgress", "progress");
}

TEST_P(UpdatePictures, OutcomeInTheSettings) {
    SettingsBench settings(GetParam());
    settings.open();
    settings.controller.showUpdateOutcome(
        UpdateBench::prompt(std::string(kNotes) + "\n" + std::string(900, 'w')).informativeText);
    settings.settle();
    savePicture(settings.window(), "update", "settings-long", GetParam());
    settings.controller.showUpdateOutcome("You are using the latest version (3.1.0).");
    settings.settle();
    savePicture(settings.window(), "update", "settings-latest", GetParam());
}

INSTANTIATE_TEST_SUITE_P(Both, UpdatePictures, testing::Values(Appearance::light, Appearance::dark),
                         [](const auto& info) {
                             return info.param == Appearance::dark ? std::string("dark") : std::string("light");
                         });

} // namespace
} // namespace fernwick::tests
