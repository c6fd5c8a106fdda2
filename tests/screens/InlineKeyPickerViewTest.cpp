// Choosing, adding and deselecting the identity key.
#include "screens/detail/InlineKeyPickerView.h"

#include "DetailBench.h"
#include "screens/theme/ChoiceMenu.h"

#include <QTextDocument>
#include <QToolButton>

namespace fernwick::tests {
namespace {

using namespace std::chrono_literals;

class KeyPicker : public DetailTest {
protected:
    ChoiceMenu& menu() { return bench.find<ChoiceMenu>("keyMenu"); }
    bool shows(const char* name) { return bench.find<QWidget>(name).isVisible(); }

    IdentityKey addKey(const std::string& path) {
        const IdentityKey key{support::Uuid::random(), path.substr(path.rfind('/') + 1), path, "", {}};
        bench.keys.add(key);
        return key;
    }

    void pick(const std::optional<std::string>& path) {
        bench.find<QPushButton>("addKeyButton").click();
        bench.dialogs.answer(path);
        bench.settle();
    }
};

TEST_F(KeyPicker, WithoutKeysItSaysHowToAddOne) {
    EXPECT_TRUE(shows("noKeysHint"));
    EXPECT_EQ(label("noKeysHint"),
              QStringLiteral("No keys yet — click \"Add Key\" to import your private key file"));
    EXPECT_EQ(menu().currentText(), QStringLiteral("None / SSH Agent"));
    EXPECT_EQ(menu().accessibleName(), QStringLiteral("Identity Key"));
    EXPECT_FALSE(shows("deselectKeyButton"));
    addKey("/k/id_rsa");
    EXPECT_FALSE(shows("noKeysHint"));
}

TEST_F(KeyPicker, ListsTheKeysAfterNone) {
    addKey("/k/first");
    const auto second = addKey("/k/second");
    ASSERT_EQ(menu().count(), 3);
    EXPECT_EQ(menu().itemText(0), QStringLiteral("None / SSH Agent"));
    EXPECT_EQ(menu().itemText(1), QStringLiteral("first"));
    EXPECT_EQ(menu().itemText(2), QStringLiteral("second"));
    menu().setCurrentIndex(2);
    EXPECT_EQ(stored().identityKeyID, second.id);
    EXPECT_TRUE(shows("deselectKeyButton"));
    menu().setCurrentIndex(0);
    EXPECT_EQ(stored().identityKeyID, std::nullopt);
}

TEST_F(KeyPicker, AnUnknownKeyShowsAsNoneUntilNoneIsChosen) {
    const auto gone = support::Uuid::random();
    edit([&](Tunnel& changed) { changed.identityKeyID = gone; });
    EXPECT_EQ(menu().currentText(), QStringLiteral("None / SSH Agent"));
    EXPECT_EQ(stored().identityKeyID, gone);
    Q_EMIT menu().activated(0);
    EXPECT_EQ(stored().identityKeyID, std::nullopt);
}

TEST_F(KeyPicker, AChosenKeyThatIsRemovedIsKeptInTheTunnel) {
    const auto key = addKey("/k/first");
    menu().setCurrentIndex(1);
    bench.keys.remove(key.id);
    bench.settle();
    EXPECT_EQ(menu().currentText(), QStringLiteral("None / SSH Agent"));
    EXPECT_EQ(stored().identityKeyID, key.id);
}

TEST_F(KeyPicker, ThePathIsToldAsItStands) {
    const QString path = QStringLiteral("/k/Tom & <b>Jerry</b>/id_rsa");
    addKey(path.toStdString());
    menu().setCurrentIndex(1);
    QTextDocument shown;
    EXPECT_TRUE(Qt::mightBeRichText(menu().toolTip()));
    shown.setHtml(menu().toolTip());
    EXPECT_EQ(shown.toPlainText(), path);
    EXPECT_EQ(menu().accessibleDescription(), path);
    menu().setCurrentIndex(0);
    EXPECT_EQ(menu().toolTip(), QString());
    EXPECT_EQ(menu().accessibleDescription(), QString());
}

TEST_F(KeyPicker, DeselectClearsTheKey) {
    addKey("/k/first");
    menu().setCurrentIndex(1);
    auto& button = bench.find<QToolButton>("deselectKeyButton");
    EXPECT_EQ(button.toolTip(), QStringLiteral("Deselect key"));
    button.click();
    EXPECT_EQ(stored().identityKeyID, std::nullopt);
    EXPECT_FALSE(shows("deselectKeyButton"));
}

TEST_F(KeyPicker, ThePanelAsksForAKeyFile) {
    EXPECT_EQ(bench.find<QPushButton>("addKeyButton").text(), QStringLiteral("Add Key"));
    bench.find<QPushButton>("addKeyButton").click();
    ASSERT_EQ(bench.dialogs.requests.size(), 1U);
    const auto& request = bench.dialogs.requests.front();
    EXPECT_EQ(request.title, "Select SSH Private Key");
    EXPECT_EQ(request.message, "Choose your private key file (id_rsa, id_ed25519, .pem, etc.)");
    EXPECT_EQ(request.folder, "/home/someone/.ssh");
    bench.find<QPushButton>("addKeyButton").click(); // one panel at a time
    EXPECT_EQ(bench.dialogs.requests.size(), 1U);
}

TEST_F(KeyPicker, ThePanelStartsInTheHomeOfTheEnvironment) {
    bench.host.environment["HOME"] = "/elsewhere";
    bench.find<QPushButton>("addKeyButton").click();
    EXPECT_EQ(bench.dialogs.requests.back().folder, "/elsewhere/.ssh");
    bench.dialogs.answer(std::nullopt);
    bench.host.environment.erase("HOME");
    bench.host.home = "/account";
    bench.find<QPushButton>("addKeyButton").click();
    EXPECT_EQ(bench.dialogs.requests.back().folder, "/account/.ssh");
}

TEST_F(KeyPicker, ANewFileBecomesAKeyAndIsChosen) {
    pick("/home/someone/.ssh/id_ed25519");
    ASSERT_EQ(bench.keys.keys().size(), 1U);
    const auto& key = bench.keys.keys().front();
    EXPECT_EQ(key.name, "id_ed25519");
    EXPECT_EQ(key.path, "/home/someone/.ssh/id_ed25519");
    EXPECT_EQ(key.comment, "");
    EXPECT_EQ(key.addedAt, bench.clock.now());
    EXPECT_EQ(stored().identityKeyID, key.id);
    EXPECT_EQ(menu().currentText(), QStringLiteral("id_ed25519"));
}

TEST_F(KeyPicker, AKnownPathSelectsItsKeyAndAddsNone) {
    const auto key = addKey("/k/id_rsa");
    addKey("/k/other");
    pick("/k/id_rsa");
    EXPECT_EQ(bench.keys.keys().size(), 2U);
    EXPECT_EQ(stored().identityKeyID, key.id);
    EXPECT_TRUE(shows("keyAddedMark"));
}

TEST_F(KeyPicker, ADismissedPanelChangesNothing) {
    pick(std::nullopt);
    EXPECT_TRUE(bench.keys.keys().empty());
    EXPECT_EQ(stored().identityKeyID, std::nullopt);
    EXPECT_FALSE(shows("keyAddedMark"));
}

TEST_F(KeyPicker, AMarkStandsBesideANewKeyForAWhile) {
    EXPECT_FALSE(shows("keyAddedMark"));
    pick("/k/id_rsa");
    EXPECT_TRUE(shows("keyAddedMark"));
    bench.dispatch.advance(1499ms);
    EXPECT_TRUE(shows("keyAddedMark"));
    bench.dispatch.advance(1ms);
    EXPECT_FALSE(shows("keyAddedMark"));
}

TEST_F(KeyPicker, ThePanelsAnswerIsForTheTunnelThatAsked) {
    const auto other = bench.add(tunnelNamed("other"));
    bench.find<QPushButton>("addKeyButton").click();
    choose(1);
    bench.dialogs.answer("/k/id_rsa");
    bench.settle();
    EXPECT_TRUE(stored().identityKeyID);
    EXPECT_FALSE(bench.store.find(other.id)->identityKeyID);
}

TEST_F(KeyPicker, AnAnswerAfterTheWindowIsGoneIsIgnored) {
    bench.find<QPushButton>("addKeyButton").click();
    bench.window.reset();
    bench.dialogs.answer("/k/id_rsa");
    EXPECT_TRUE(bench.keys.keys().empty());
}

TEST_F(KeyPicker, TheMarksTimerOutlivesTheWindow) {
    pick("/k/id_rsa");
    bench.window.reset();
    bench.dispatch.advance(2s);
    EXPECT_EQ(bench.dispatch.pendingDelayed(), 0U);
}

} // namespace
} // namespace fernwick::tests
