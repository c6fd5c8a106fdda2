// The desktop's setting as a portal on a private bus tells it.
#include "screens/theme/DesktopAppearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTest>
#include <gtest/gtest.h>

namespace fernwick::tests {
namespace {

const auto kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto kSettings = QStringLiteral("org.freedesktop.portal.Settings");
const auto kSpace = QStringLiteral("org.freedesktop.appearance");
const auto kKey = QStringLiteral("color-scheme");

QVariant wrapped(uint value) {
    return QVariant::fromValue(QDBusVariant(value));
}

// Answers the question for the colour scheme.
class Portal final : public QDBusVirtualObject {
public:
    explicit Portal(const QString& address)
        : bus_(QDBusConnection::connectToBus(address, QStringLiteral("portal"))) {
        EXPECT_TRUE(bus_.registerVirtualObject(kPath, this));
        EXPECT_TRUE(bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    }
    ~Portal() override { QDBusConnection::disconnectFromBus(QStringLiteral("portal")); }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        EXPECT_EQ(message.member(), QStringLiteral("Read"));
        EXPECT_EQ(message.arguments(), (QVariantList{kSpace, kKey}));
        ++questions;
        // The portal answers with a variant in a variant.
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(wrapped(scheme)))));
    }

    void change(const QString& space, const QString& key, uint value) {
        auto signal = QDBusMessage::createSignal(kPath, kSettings, QStringLiteral("SettingChanged"));
        signal << space << key << wrapped(value);
        EXPECT_TRUE(bus_.send(signal));
    }

    uint scheme = 1;
    int questions = 0;

private:
    QDBusConnection bus_;
};

class DesktopSetting : public testing::Test {
protected:
    DesktopSetting() {
        daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                     QStringLiteral("--print-address")});
        EXPECT_TRUE(daemon.waitForReadyRead());
        address = QString::fromLatin1(daemon.readLine().trimmed());
    }
    ~DesktopSetting() override {
        QDBusConnection::disconnectFromBus(QStringLiteral("asker"));
        daemon.kill();
        daemon.waitForFinished();
    }

    DesktopAppearance::FindBus privateBus() {
        return [this] { return QDBusConnection::connectToBus(address, QStringLiteral("asker")); };
    }

    QProcess daemon;
    QString address;
    std::vector<Appearance> told;
};

TEST_F(DesktopSetting, IsAskedForAndFollowed) {
    Portal portal(address);
    const DesktopAppearance desktop([this](Appearance wanted) { told.push_back(wanted); }, privateBus());
    EXPECT_TRUE(QTest::qWaitFor([&] { return told == std::vector{Appearance::dark}; }));
    EXPECT_EQ(portal.questions, 1);
    portal.change(kSpace, QStringLiteral("accent-color"), 2);
    portal.change(QStringLiteral("org.gnome.desktop.interface"), kKey, 2);
    portal.change(kSpace, kKey, 0);
    portal.change(kSpace, kKey, 7);
    portal.change(kSpace, kKey, 2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.size() == 2; }));
    EXPECT_EQ(told.back(), Appearance::light);
}

TEST_F(DesktopSetting, IsSilentWithoutAPortalOrABus) {
    bool asked = false;
    const auto tell = [this](Appearance wanted) { told.push_back(wanted); };
    const DesktopAppearance withoutPortal(tell, privateBus());
    const DesktopAppearance withoutBus(tell, [&]() -> std::optional<QDBusConnection> {
        asked = true;
        return std::nullopt;
    });
    EXPECT_FALSE(asked);
    EXPECT_TRUE(QTest::qWaitFor([&] { return asked; }));
    EXPECT_TRUE(told.empty());
}

} // namespace
} // namespace fernwick::tests
