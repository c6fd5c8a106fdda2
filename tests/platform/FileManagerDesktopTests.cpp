#include "PrivateBus.h"
#include "platform/qt/FileManagerDesktop.h"
#include "support/FakeHostEnvironment.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

namespace fernwick::platform {

namespace {

constexpr auto kService = "org.freedesktop.FileManager1";
constexpr auto kPath = "/org/freedesktop/FileManager1";

class FileManagerDesktopTest : public testing::Test {
protected:
    FileManagerDesktopTest() { host_.environment["DBUS_SESSION_BUS_ADDRESS"] = bus_.address(); }

    // A file manager that does nothing; the code is what its method does.
    void startFileManager(const std::string& code = "") {
        const Environment environment{{"PATH", "/usr/bin:/bin"}, {"DBUS_SESSION_BUS_ADDRESS", bus_.address()}};
        manager_ = std::make_unique<TestProgram>(
            "/usr/bin/python3",
            std::vector<std::string>{"-m", "dbusmock", "--session", kService, kPath, kService}, &environment);
        ASSERT_TRUE(fakes::waitUntil([this] { return bus_.hasOwner(kService); }));
        ASSERT_NE(bus_.call(kService, kPath, "org.freedesktop.DBus.Mock.AddMethod",
                            {kService, "ShowItems", "ass", "", code}),
                  "");
    }
    // What it was asked for, as gdbus prints it.
    [[nodiscard]] std::string calls() const {
        return bus_.call(kService, kPath, "org.freedesktop.DBus.Mock.GetMethodCalls", {"ShowItems"});
    }
    FileManagerDesktop& desktop(std::chrono::milliseconds patience = FileManagerDesktop::kPatience) {
        desktop_ = std::make_unique<FileManagerDesktop>(
            host_, [this](const auto& folder) { opened_.push_back(folder); }, patience);
        return *desktop_;
    }
    template <class Condition>
    [[nodiscard]] static bool waitUntil(Condition condition) {
        return fakes::waitUntil([] { QCoreApplication::processEvents(); }, condition);
    }
    [[nodiscard]] bool isOpened(const std::string& folder) {
        return waitUntil([&] { return opened_ == std::vector{folder}; });
    }

    PrivateBus bus_;
    fakes::FakeHostEnvironment host_;
    std::unique_ptr<TestProgram> manager_;
    std::unique_ptr<FileManagerDesktop> desktop_;
    std::vector<std::string> opened_;
};

} // namespace

TEST_F(FileManagerDesktopTest, FileManagerIsAskedToShowTheFile) {
    startFileManager();
    desktop().reveal("/home/someone/back ups/Kết nối 100%#1?.json");
    EXPECT_TRUE(waitUntil([this] {
        return calls().contains(
            "'file:///home/someone/back%20ups/K%E1%BA%BFt%20n%E1%BB%91i%20100%25%231%3F.json']>, <"
            "''>");
    })) << calls();
    desktop_->reveal("/bytes/\xff");
    EXPECT_TRUE(waitUntil([this] { return calls().contains("'file:///bytes/%FF']>, <''>"); })) << calls();
    EXPECT_TRUE(opened_.empty());
}

TEST_F(FileManagerDesktopTest, BusIsLeftAloneUntilTheFirstUse) {
    const auto names = [this] {
        return bus_.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.ListNames");
    };
    // Each asking connects once, under the next name.
    const auto connections = [](const std::string& list) { return std::ranges::count(list, ':'); };
    const auto before = connections(names());
    desktop();
    EXPECT_EQ(connections(names()), before);
    desktop_->reveal("/folder/file");
    EXPECT_EQ(connections(names()), before + 1);
    EXPECT_TRUE(isOpened("/folder"));
}

TEST_F(FileManagerDesktopTest, WithoutAFileManagerTheFolderIsOpened) {
    desktop().reveal("/folder/sub folder/file");
    EXPECT_TRUE(isOpened("/folder/sub folder"));
}

TEST_F(FileManagerDesktopTest, FileManagerThatFailsIsMadeUpFor) {
    startFileManager("raise dbus.exceptions.DBusException('no', name='org.example.No')");
    desktop().reveal("/folder/file");
    EXPECT_TRUE(isOpened("/folder"));
}

TEST_F(FileManagerDesktopTest, FileManagerThatHangsHoldsNobodyUp) {
    startFileManager();
    manager_->signal(SIGSTOP);
    desktop(std::chrono::milliseconds(100)).reveal("/folder/file");
    EXPECT_TRUE(opened_.empty());
    EXPECT_TRUE(isOpened("/folder"));
    manager_->signal(SIGCONT);
}

TEST_F(FileManagerDesktopTest, WithoutABusTheFolderIsOpenedAtOnce) {
    for (const auto* address : {"", "unix:path=/nonexistent/bus"}) {
        host_.environment["DBUS_SESSION_BUS_ADDRESS"] = address;
        opened_.clear();
        desktop().reveal("/folder/file");
        EXPECT_EQ(opened_, std::vector<std::string>{"/folder"}) << address;
    }
    desktop_->reveal("/file");
    EXPECT_EQ(opened_.back(), "/");
}

TEST_F(FileManagerDesktopTest, EndOpensNothingMore) {
    startFileManager();
    manager_->signal(SIGSTOP);
    desktop(std::chrono::milliseconds(1)).reveal("/folder/file");
    desktop_.reset();
    EXPECT_TRUE(fakes::staysTrue([this] {
        QCoreApplication::processEvents();
        return opened_.empty();
    }));
    manager_->signal(SIGCONT);
}

} // namespace fernwick::platform
