// What the user feels of the settings window: its opening, and 20,000 known hosts that are loaded, scrolled
// through and saved.
#include "screens/settings/KnownHostsSettingsView.h"
#include "screens/settings/SettingsWindow.h"
#include "support/FakeClock.h"
#include "support/FakeDesktop.h"
#include "support/FakeDispatch.h"
#include "support/FakeFileSystem.h"
#include "support/FakeHostEnvironment.h"
#include "support/FakeKeychain.h"
#include "support/FakeLoginItem.h"
#include "support/FakePlatform.h"
#include "support/FakeUserDefaults.h"

#include <QApplication>
#include <QImage>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>
#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace fernwick;

constexpr int kLines = 20000;

std::string knownHosts() {
    std::string text;
    for (int line = 0; line < kLines; ++line) {
        text += "host" + std::to_string(line) + ".internal.example.com,10.0." + std::to_string(line / 256) +
                "." + std::to_string(line % 256) + " ssh-ed25519 AAAAC3NzaC1lZDI1NTE5AAAA" +
                std::string(48, 'A') + "\n";
    }
    return text;
}

// All that the window needs, beside a long file.
struct SettingsDesk {
    SettingsDesk() { files.files["/home/someone/.ssh/known_hosts"] = {knownHosts(), 0600}; }

    std::unique_ptr<SettingsWindow> open(SettingsTab tab) {
        auto window = std::make_unique<SettingsWindow>(context());
        window->view().select(tab);
        window->show();
        QApplication::processEvents();
        return window;
    }

    SettingsContext context() {
        return {theme,   keys,   tags,  keychain, defaults, loginItem,
                desktop, panels, files, dispatch, clock,    host};
    }

    fakes::FakeDispatch dispatch;
    fakes::FakeClock clock{dispatch};
    fakes::FakeUserDefaults defaults;
    fakes::FakeHostEnvironment host;
    fakes::FakeKeychain secrets;
    KeychainStore keychain{secrets};
    KeyManager keys{defaults};
    TagManager tags{defaults};
    fakes::FakeLoginItem loginItem;
    fakes::FakeDesktop desktop;
    fakes::FakeDialogs panels;
    fakes::FakeFileSystem files;
    Theme theme{*qApp, Appearance::light};
};

void openOn(benchmark::State& state, SettingsTab tab) {
    SettingsDesk desk;
    for (auto _ : state) {
        const auto window = desk.open(tab);
        QImage frame(window->size(), QImage::Format_ARGB32_Premultiplied);
        window->render(&frame);
    }
}

// From the click until the first tab is painted.
void openSettings(benchmark::State& state) {
    openOn(state, SettingsTab::general);
}
BENCHMARK(openSettings)->Unit(benchmark::kMillisecond);

// The same on the known hosts, which are read, decoded and laid out.
void openKnownHosts(benchmark::State& state) {
    openOn(state, SettingsTab::knownHosts);
}
BENCHMARK(openKnownHosts)->Unit(benchmark::kMillisecond);

// The text of the known hosts; other pages have texts too.
QPlainTextEdit& editorIn(const QWidget& window) {
    return *window.findChild<QPlainTextEdit*>(QStringLiteral("knownHostsEditor"));
}

// A page further down in the known hosts, painted.
void scrollKnownHosts(benchmark::State& state) {
    SettingsDesk desk;
    const auto window = desk.open(SettingsTab::knownHosts);
    QImage frame(window->size(), QImage::Format_ARGB32_Premultiplied);
    auto* bar = editorIn(*window).verticalScrollBar();
    for (auto _ : state) {
        bar->setValue((bar->value() + bar->pageStep()) % bar->maximum());
        window->render(&frame);
    }
}
BENCHMARK(scrollKnownHosts)->Unit(benchmark::kMillisecond);

// A key typed in the middle of them, painted.
void typeInKnownHosts(benchmark::State& state) {
    SettingsDesk desk;
    const auto window = desk.open(SettingsTab::knownHosts);
    QImage frame(window->size(), QImage::Format_ARGB32_Premultiplied);
    auto& editor = editorIn(*window);
    editor.setTextCursor(QTextCursor(editor.document()->findBlockByNumber(kLines / 2)));
    for (auto _ : state) {
        editor.insertPlainText(QStringLiteral("x"));
        window->render(&frame);
    }
}
BENCHMARK(typeInKnownHosts)->Unit(benchmark::kMillisecond);

// From the click on the button until the bytes are handed to the file system and the status is painted.
void saveKnownHosts(benchmark::State& state) {
    SettingsDesk desk;
    const auto window = desk.open(SettingsTab::knownHosts);
    QImage frame(window->size(), QImage::Format_ARGB32_Premultiplied);
    auto* button = window->findChild<QPushButton*>(QStringLiteral("saveKnownHostsButton"));
    for (auto _ : state) {
        button->click();
        window->render(&frame);
    }
}
BENCHMARK(saveKnownHosts)->Unit(benchmark::kMillisecond);

} // namespace
