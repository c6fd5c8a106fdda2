// The main window with one tunnel that is chosen, and ways to look at the detail column.
#pragma once

#include "Bench.h"
#include "screens/detail/TabButton.h"
#include "screens/theme/TextField.h"

#include <QLabel>
#include <QListView>
#include <QTest>
#include <gtest/gtest.h>

#include <functional>

namespace fernwick::tests {

class DetailTest : public testing::Test {
protected:
    DetailTest() {
        tunnel = tunnelNamed("web");
        tunnel.localPort = "8080";
        bench.open().resize(900, 1400); // high enough for the whole form
        bench.add(tunnel);
        choose(0);
    }

    void choose(int row) {
        auto& list = bench.find<QListView>("tunnelList");
        list.setCurrentIndex(list.model()->index(row, 0));
        bench.settle();
    }

    void turnTo(const char* tab) {
        bench.find<TabButton>(tab).click();
        bench.settle();
    }

    // The tunnel as the store has it.
    [[nodiscard]] const Tunnel& stored() const { return *bench.store.find(tunnel.id); }

    // Changes the tunnel behind the window's back.
    void edit(const std::function<void(Tunnel&)>& change) {
        Tunnel edited = stored();
        change(edited);
        bench.store.update(edited);
        bench.settle();
    }

    TextField& field(const char* name) { return bench.find<TextField>(name); }
    QString label(const char* name) { return bench.find<QLabel>(name).text(); }

    Bench bench;
    Tunnel tunnel;
};

} // namespace fernwick::tests
