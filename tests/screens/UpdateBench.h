// The updater's alerts over a main window and a settings window, on fakes, and ways to look at them.
#pragma once

#include "screens/theme/AlertSheet.h"
#include "screens/theme/LongTextView.h"
#include "screens/updating/UpdateAlerts.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

namespace fernwick::tests {

struct UpdateBench {
    explicit UpdateBench(Appearance appearance = Appearance::light) : theme(*qApp, appearance) {}

    // A window as the application's own are, with the keyboard.
    std::unique_ptr<QWidget> openWindow() {
        auto window = std::make_unique<QWidget>();
        window->resize(400, 300);
        window->show();
        window->activateWindow();
        settle();
        return window;
    }

    void settle() {
        for (int level = 0; level < 4; ++level) {
            QApplication::sendPostedEvents();
            QApplication::processEvents();
        }
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static UpdatePrompt prompt(const std::string& notes = "Fixes the popover on two screens.") {
        return {"Application Update",
                "New version 4.0 is available.\n\n" + notes +
                    "\n\nWould you like to download and install it now?",
                "Update Now", "Later"};
    }

    void ask(const UpdatePrompt& question = prompt()) {
        alerts.ask(question, [this](bool accepted) { answers.push_back(accepted); });
        settle();
    }

    void showProgress() {
        alerts.showProgress({"Downloading update...",
                             "Please wait while downloading from Cloud...\nApp will automatically restart when "
                             "finished.",
                             "Downloading..."});
        settle();
    }

    // The dialog of that name on the screen, or null.
    static QDialog* look(const char* name) {
        for (auto* widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible() && widget->objectName() == QLatin1String(name)) {
                return qobject_cast<QDialog*>(widget);
            }
        }
        return nullptr;
    }

    // The same, which must exist.
    static QDialog& dialog(const char* name) {
        auto* found = look(name);
        if (found == nullptr) {
            qFatal("no dialog named %s", name);
        }
        return *found;
    }

    template <class Widget>
    static Widget& find(const char* in, const char* name) {
        auto* found = dialog(in).findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) {
            qFatal("no widget named %s", name);
        }
        return *found;
    }

    Theme theme;
    UpdateAlerts alerts{theme};
    std::vector<bool> answers;
};

} // namespace fernwick::tests
