// The popover on fakes, with what its footer was asked to do.
#pragma once

#include "Bench.h"
#include "screens/menubar/MenuBarPopover.h"
#include "screens/menubar/PopoverRowButton.h"
#include "screens/menubar/PopoverTunnelList.h"
#include "screens/menubar/PopoverTunnelModel.h"
#include "screens/menubar/PopoverTunnelRow.h"

#include <QLabel>
#include <QTest>

#include <memory>
#include <string>
#include <vector>

namespace fernwick::tests {

struct MenuBarBench : Bench {
    explicit MenuBarBench(Appearance appearance = Appearance::light) : Bench(appearance) {}

    [[nodiscard]] MenuBarActions recordingActions() {
        return {.openProxyRules = [this](const TunnelNames& names) { asked.push_back(names); },
                .openMainWindow = [this] { calls.emplace_back("main window"); },
                .openSettings = [this] { calls.emplace_back("settings"); },
                .quit = [this] { calls.emplace_back("quit"); }};
    }

    MenuBarCommands& makeCommands(MenuBarActions actions) {
        commands = std::make_unique<MenuBarCommands>(
            MenuBarContext{theme, store, manager, dispatch, std::move(actions)});
        return *commands;
    }

    MenuBarPopover& openPopover() {
        if (!commands) {
            makeCommands(recordingActions());
        }
        tally = std::make_unique<TunnelTally>(store, manager, dispatch);
        popover = std::make_unique<MenuBarPopover>(*commands, *tally, nullptr);
        popover->refresh();
        popover->show();
        popover->focusAfresh();
        settle();
        return *popover;
    }

    // A tunnel that could not be started.
    void failed(const Tunnel& tunnel) {
        processes.failNextLaunch({2, "No such file or directory"});
        manager.connect(tunnel, store);
        settle();
    }

    void connecting(const Tunnel& tunnel) {
        manager.connect(tunnel, store);
        settle();
    }

    template <class Widget>
    Widget& part(const char* name) const {
        auto* found = popover->findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr) {
            qFatal("no part named %s", name);
        }
        return *found;
    }

    [[nodiscard]] PopoverTunnelList& list() const { return part<PopoverTunnelList>("popoverTunnelList"); }
    [[nodiscard]] PopoverRowButton& rowButton() const { return part<PopoverRowButton>("popoverRowButton"); }
    [[nodiscard]] QString summary() const { return part<QLabel>("popoverSummary").text(); }

    void press(const char* button) {
        part<QAbstractButton>(button).click();
        settle();
    }

    // Puts the pointer on a row and waits until it is lit.
    void hover(int row) {
        auto* rows = list().viewport();
        const QPoint place = list().visualRect(list().model()->index(row, 0)).center();
        QCursor::setPos(rows->mapToGlobal(place));
        QTest::mouseMove(rows, place);
        settle();
    }

    void leave() {
        QCursor::setPos(popover->mapToGlobal(QPoint(0, 0)) - QPoint(50, 50));
        QEvent left(QEvent::Leave);
        QApplication::sendEvent(list().viewport(), &left);
        settle();
    }

    std::vector<TunnelNames> asked;
    std::vector<std::string> calls;
    std::unique_ptr<MenuBarCommands> commands;
    std::unique_ptr<TunnelTally> tally;
    std::unique_ptr<MenuBarPopover> popover;
};

} // namespace fernwick::tests
