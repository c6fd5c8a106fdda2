#include "screens/main/TunnelListModel.h"

#include "Bench.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

struct ModelSpies {
    explicit ModelSpies(TunnelListModel& model)
        : reset(&model, &QAbstractItemModel::modelReset),
          inserted(&model, &QAbstractItemModel::rowsInserted),
          removed(&model, &QAbstractItemModel::rowsRemoved),
          changed(&model, &QAbstractItemModel::dataChanged) {}

    [[nodiscard]] std::vector<qsizetype> counts() const {
        return {reset.count(), inserted.count(), removed.count(), changed.count()};
    }

    QSignalSpy reset, inserted, removed, changed;
};

class ListModel : public testing::Test {
protected:
    ListModel() { model.setTunnels(filteredTunnels(tunnels, "", std::nullopt)); }

    // Hands the tunnels to the model and says what it told its views: resets, insertions, removals, changes.
    std::vector<qsizetype> update() {
        const ModelSpies spies(model);
        model.setTunnels(filteredTunnels(tunnels, "", std::nullopt));
        for (std::size_t row = 0; row < tunnels.size(); ++row) {
            EXPECT_EQ(model.tunnel(static_cast<int>(row)), tunnels[row]);
        }
        EXPECT_EQ(model.rowCount(), static_cast<int>(tunnels.size()));
        return spies.counts();
    }

    Bench bench;
    TunnelListModel model{bench.manager, bench.tags, nullptr};
    std::vector<Tunnel> tunnels{tunnelNamed("a"), tunnelNamed("b"), tunnelNamed("c")};
};

using Counts = std::vector<qsizetype>;

TEST_F(ListModel, TheSameListChangesNothing) {
    EXPECT_EQ(update(), (Counts{0, 0, 0, 0}));
}

TEST_F(ListModel, AnEditChangesItsRow) {
    tunnels[1].name = "bb";
    EXPECT_EQ(update(), (Counts{0, 0, 0, 1}));
}

TEST_F(ListModel, AnAddedTunnelIsInserted) {
    tunnels.push_back(tunnelNamed("d"));
    EXPECT_EQ(update(), (Counts{0, 1, 0, 0}));
}

TEST_F(ListModel, AnAddedTunnelBesideAnEdit) {
    tunnels[2].host = "elsewhere";
    tunnels.insert(tunnels.begin(), tunnelNamed("0"));
    EXPECT_EQ(update(), (Counts{0, 1, 0, 1}));
}

TEST_F(ListModel, ADeletedTunnelIsRemoved) {
    tunnels.erase(tunnels.begin() + 1);
    EXPECT_EQ(update(), (Counts{0, 0, 1, 0}));
}

TEST_F(ListModel, AllCanGoAndComeBack) {
    const auto all = std::exchange(tunnels, {});
    EXPECT_EQ(update(), (Counts{0, 0, 1, 0}));
    tunnels = all;
    EXPECT_EQ(update(), (Counts{0, 1, 0, 0}));
}

TEST_F(ListModel, AnotherOrderResets) {
    std::swap(tunnels[0], tunnels[2]);
    EXPECT_EQ(update(), (Counts{1, 0, 0, 0}));
}

TEST_F(ListModel, AStatusTouchesItsRowAlone) {
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.refreshStatuses({tunnels[1].id, support::Uuid::random()});
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(changed.first().at(0).toModelIndex().row(), 1);
    EXPECT_EQ(changed.first().at(1).toModelIndex().row(), 1);
    EXPECT_EQ(changed.first().at(2).value<QList<int>>(), QList<int>{TunnelListModel::kStatusRole});
}

TEST_F(ListModel, SkipsTagsThatAreGone) {
    const auto& tags = bench.tags.tags();
    tunnels[0].tagIDs = {support::Uuid::random(), tags[2].id, tags[0].id};
    tunnels[1].tagIDs = {support::Uuid::random()};
    update();
    EXPECT_EQ(model.tags(0), (std::vector<const TunnelTag*>{&tags[2], &tags[0]}));
    EXPECT_TRUE(model.hasTags(0));
    EXPECT_TRUE(model.tags(1).empty());
    EXPECT_FALSE(model.hasTags(1));
}

TEST_F(ListModel, SaysNameStatusAndLoginAloud) {
    Tunnel tunnel = tunnelNamed("My\nserver", "root", "db.example.com");
    bench.store.add(tunnel);
    tunnels = {tunnel};
    update();
    const auto aloud = [&] { return model.data(model.index(0), Qt::AccessibleTextRole).toString(); };
    EXPECT_EQ(aloud(), QStringLiteral("My server, Idle, root@db.example.com"));
    bench.connected(tunnel);
    EXPECT_EQ(aloud(), QStringLiteral("My server, Connected, root@db.example.com"));
}

} // namespace
} // namespace fernwick::tests
