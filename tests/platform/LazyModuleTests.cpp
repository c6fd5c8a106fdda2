#include "platform/modules/LazyModule.h"
#include "support/FakeDispatch.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fernwick::platform {
namespace {

// What a request gets from the module in that folder.
HttpResult ask(const std::string& folder) {
    fakes::FakeDispatch dispatch;
    LazyHttpClient client(folder, dispatch);
    HttpResult told = HttpResponse{};
    client.send({.method = "GET", .url = "http://127.0.0.1:1/"},
                [&](HttpResult result) { told = std::move(result); });
    dispatch.runAll();
    return told;
}

constexpr const char* kMissing = "The part of the application that asks the network is missing";

TEST(LazyModule, WithoutTheModuleEveryRequestFails) {
    const fakes::TemporaryFolder empty;
    const auto told = ask(empty / "");
    ASSERT_FALSE(told);
    EXPECT_EQ(told.error().description, kMissing);
}

TEST(LazyModule, ModuleOfAnotherVersionIsNotEntered) {
    const fakes::TemporaryFolder folder;
    std::filesystem::copy_file(FERNWICK_STALE_MODULE, folder / "libfernwick_http.so");
    testing::internal::CaptureStderr();
    const auto told = ask(folder / "");
    ASSERT_FALSE(told);
    EXPECT_EQ(told.error().description, kMissing);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("is another version's"), std::string::npos);
}

} // namespace
} // namespace fernwick::platform
