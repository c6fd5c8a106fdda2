// The page of exports, backups and the cloud in a window of its own, on fakes, and ways to look at it.
#pragma once

#include "portability/SyncWorld.h"
#include "screens/settings/SyncSettingsView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QListView>
#include <QPainter>
#include <QTest>
#include <QVBoxLayout>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace fernwick::tests {

// A window as the settings have it.
class SyncWindow final : public QWidget {
public:
    explicit SyncWindow(const Theme& theme) : theme_(theme) {
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        resize(680, 670);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(rect(), theme_.colors().window);
    }

private:
    const Theme& theme_;
};

struct SyncBench : SyncWorld {
    explicit SyncBench(Appearance appearance = Appearance::light) : theme(*qApp, appearance) {
        defaults.remove(kTunnels); // the sample of a first start
    }

    [[nodiscard]] SyncPageContext context() {
        return {theme,
                [this]() -> SyncManager& {
                    ++asked;
                    return make();
                },
                importer,
                merge,
                dialogs,
                dispatch,
                clock,
                host,
                cloudFolder};
    }

    // Makes the page in a window that is not on the screen yet.
    void prepare() {
        window = std::make_unique<SyncWindow>(theme);
        page = new SyncSettingsView(context(), window.get());
        window->layout()->addWidget(page);
    }

    void openPage() {
        prepare();
        window->show();
        window->activateWindow();
        settle();
    }

    // Lets everything that is queued happen, without letting virtual time pass.
    void settle() {
        constexpr int kLevels = 4; // a change of size climbs from layout to layout
        dispatch.runAll();
        for (int level = 0; level < kLevels; ++level) {
            QApplication::sendPostedEvents();
            QApplication::processEvents();
        }
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void advance(platform::Duration duration) {
        dispatch.advance(duration);
        settle();
    }

    // The window's widget of that name, or null.
    template <class Widget>
    [[nodiscard]] Widget* look(const char* name) const {
        return window->findChild<Widget*>(QString::fromLatin1(name));
    }

    // The same, which must exist.
    template <class Widget>
    Widget& find(const char* name) const {
        auto* found = look<Widget>(name);
        if (found == nullptr) {
            qFatal("no widget named %s", name);
        }
        return *found;
    }

    void click(const char* button) {
        find<QAbstractButton>(button).click();
        settle();
    }

    [[nodiscard]] std::string text(const char* label) const { return find<QLabel>(label).text().toStdString(); }
    [[nodiscard]] std::string caption(const char* button) const {
        return find<QAbstractButton>(button).text().toStdString();
    }
    [[nodiscard]] bool enabled(const char* widget) const { return find<QWidget>(widget).isEnabled(); }
    [[nodiscard]] bool seen(const char* widget) const { return find<QWidget>(widget).isVisible(); }
    [[nodiscard]] bool on(const char* button) const { return find<QAbstractButton>(button).isChecked(); }

    // The name of what has the keyboard.
    [[nodiscard]] std::string focused() const {
        const auto* widget = window->focusWidget();
        return widget != nullptr ? widget->objectName().toStdString() : "(nothing)";
    }

    // Title and message of the alert on the screen, and its button is pressed.
    std::string dismissAlert() {
        if (look<QDialog>("syncAlert") == nullptr) {
            return "(no alert)";
        }
        std::string said = text("syncAlertTitle") + ": " + text("syncAlertText");
        click("syncAlertButton");
        return said;
    }

    void storeTunnels(std::size_t count) { defaults.setData(kTunnels, listOf<Tunnel>(count)); }

    // A file in the folder of the backups, that old.
    std::string addBackup(const std::string& name, std::chrono::hours age, std::string bytes = "text") {
        const auto path = std::string(kDefaultFolder) + "/" + name;
        putFile(path, std::move(bytes), ago(age));
        return path;
    }

    // That many backups, the newest first in the list, and the list unfolded.
    void openHistory(int backups) {
        for (int number = 0; number < backups; ++number) {
            addBackup("Fernwick_" + std::to_string(number) + ".backup", std::chrono::hours(number + 1));
        }
        openPage();
        click("backupDisclosure");
    }

    // The names in the list of backups.
    [[nodiscard]] std::vector<std::string> rows() const {
        std::vector<std::string> names;
        const auto* model = find<QListView>("backupList").model();
        for (int row = 0; row < model->rowCount(); ++row) {
            names.push_back(model->index(row, 0).data().toString().toStdString());
        }
        return names;
    }

    // The button on the screen that is called that aloud, or null.
    [[nodiscard]] QAbstractButton* called(const std::string& name) const {
        for (auto* button : window->findChildren<QAbstractButton*>()) {
            if (button->isVisible() && button->accessibleName().toStdString() == name) {
                return button;
            }
        }
        return nullptr;
    }

    void press(const std::string& name) {
        auto* button = called(name);
        if (button == nullptr) {
            qFatal("no button called %s", name.c_str());
        }
        button->click();
        settle();
    }

    Theme theme;
    TunnelStore store{defaults, clock};
    FernwickSSHImporter importer{dialogs, files, clock};
    ImportMerge merge{defaults, dispatch, store, notifications};
    std::string cloudFolder = "/home/someone/.local/share/Fernwick/Cloud";
    int asked = 0; // times that the page asked for the manager
    std::unique_ptr<SyncWindow> window;
    SyncSettingsView* page = nullptr;
};

class SyncPageTest : public testing::Test {
protected:
    SyncBench bench;
};

} // namespace fernwick::tests
