#include "PrivateBus.h"
#include "SingleInstanceContract.h"
#include "platform/qt/DBusSingleInstance.h"
#include "support/FakeHostEnvironment.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>

#include <atomic>
#include <chrono>
#include <thread>

namespace fernwick::platform {

namespace {

using Claim = SingleInstance::Claim;
using Start = SingleInstance::Start;

class BusHarness {
public:
    BusHarness() {
        host_.support = folder_ / "support";
        useBus(bus_.address());
    }

    void useBus(const std::string& address) { host_.environment = {{"DBUS_SESSION_BUS_ADDRESS", address}}; }
    void useNoBus() { host_.environment = {{"XDG_RUNTIME_DIR", folder_.path()}}; }
    void useSupportFolder(const std::string& path) { host_.support = path; }

    std::unique_ptr<SingleInstance> make() { return std::make_unique<DBusSingleInstance>(host_); }

    // Another start, on a thread of its own, since the first has to answer meanwhile.
    Claim claimElsewhere(Start start = Start::shown) {
        std::atomic<bool> done = false;
        Claim claim{};
        std::thread other([&] {
            claim = make()->claim(start);
            done = true;
        });
        EXPECT_TRUE(fakes::waitUntil([] { QCoreApplication::processEvents(); }, [&] { return done.load(); }));
        other.join();
        QCoreApplication::processEvents();
        return claim;
    }

    // Another start while the first does not answer.
    Claim claimUnanswered() {
        Claim claim{};
        std::thread([&] { claim = make()->claim(Start::shown); }).join();
        return claim;
    }

    [[nodiscard]] const std::string& busAddress() const { return bus_.address(); }
    [[nodiscard]] const fakes::TemporaryFolder& folder() const { return folder_; }

private:
    int count_ = 1;
    char name_[8] = "harness";
    char* arguments_[2] = {name_, nullptr};
    QCoreApplication application_{count_, arguments_};
    fakes::TemporaryFolder folder_;
    PrivateBus bus_;
    fakes::FakeHostEnvironment host_;
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(DBus, SingleInstanceContract, BusHarness);

TEST(DBusSingleInstance, DesktopRaisesTheApplicationByEachOfItsCalls) {
    BusHarness harness;
    const auto first = harness.make();
    ASSERT_EQ(first->claim(Start::shown), Claim::first);
    int reopened = 0;
    const auto subscription = first->reopened.connect([&] { ++reopened; });
    auto desktop =
        QDBusConnection::connectToBus(QString::fromStdString(harness.busAddress()), QStringLiteral("desktop"));
    const auto call = [&](const QString& method, const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(QStringLiteral("com.fernwick.Fernwick"),
                                                      QStringLiteral("/com/fernwick/Fernwick"),
                                                      QStringLiteral("org.freedesktop.Application"), method);
        message.setArguments(arguments);
        const auto pending = desktop.asyncCall(message);
        EXPECT_TRUE(
            fakes::waitUntil([] { QCoreApplication::processEvents(); }, [&] { return pending.isFinished(); }));
        EXPECT_FALSE(pending.isError()) << pending.error().message().toStdString();
    };
    call(QStringLiteral("Activate"), {QVariantMap()});
    EXPECT_EQ(reopened, 1);
    call(QStringLiteral("Open"), {QStringList(), QVariantMap()});
    EXPECT_EQ(reopened, 2);
    call(QStringLiteral("ActivateAction"), {QStringLiteral("show"), QVariantList(), QVariantMap()});
    EXPECT_EQ(reopened, 3);
    QDBusConnection::disconnectFromBus(QStringLiteral("desktop"));
}

TEST(DBusSingleInstance, HungFirstInstanceDoesNotHangTheSecond) {
    BusHarness harness;
    const auto first = harness.make();
    ASSERT_EQ(first->claim(Start::shown), Claim::first);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(harness.claimUnanswered(), Claim::second);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

TEST(DBusSingleInstance, WithoutABusTheLockFileTells) {
    BusHarness harness;
    harness.useNoBus();
    auto first = harness.make();
    ASSERT_EQ(first->claim(Start::shown), Claim::first);
    EXPECT_EQ(harness.claimUnanswered(), Claim::second);
    first.reset();
    EXPECT_EQ(harness.claimUnanswered(), Claim::first);
}

TEST(DBusSingleInstance, BusWithNobodyBehindItCountsAsNone) {
    BusHarness harness;
    harness.useBus("unix:path=" + (harness.folder() / "nobody"));
    EXPECT_EQ(harness.make()->claim(Start::shown), Claim::first);
}

TEST(DBusSingleInstance, AnotherBusWithTheSameHomeIsFound) {
    BusHarness harness;
    const auto first = harness.make();
    ASSERT_EQ(first->claim(Start::shown), Claim::first);
    const PrivateBus other;
    harness.useBus(other.address());
    EXPECT_EQ(harness.claimElsewhere(), Claim::second);
    // The refused start holds no name there: with a home of its own the next one is the application.
    harness.useSupportFolder(harness.folder() / "other home");
    EXPECT_EQ(harness.claimElsewhere(), Claim::first);
}

TEST(DBusSingleInstance, FolderThatCannotBeWrittenIsToldAndNoHindrance) {
    BusHarness harness;
    harness.useNoBus();
    harness.folder().write("file", "no folder");
    harness.useSupportFolder(harness.folder() / "file");
    const auto instance = harness.make();
    testing::internal::CaptureStderr();
    EXPECT_EQ(instance->claim(Start::shown), Claim::first);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "[SingleInstance] " +
                                                          (harness.folder() / "file/instance.lock") +
                                                          " cannot be locked: Not a directory\n");
}

} // namespace fernwick::platform
