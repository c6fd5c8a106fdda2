#include "shell/HiddenStart.h"

#include "support/FakeDispatch.h"
#include "support/FakeTrayHost.h"

#include <gtest/gtest.h>

#include <memory>

namespace fernwick {

namespace {

struct HiddenStartTest : testing::Test {
    fakes::FakeDispatch dispatch;
    fakes::FakeTrayHost host;
    int opened = 0;
    std::unique_ptr<HiddenStart> start = std::make_unique<HiddenStart>(host, dispatch, [this] { ++opened; });
};

} // namespace

TEST_F(HiddenStartTest, OpensNothingWhereThereIsATray) {
    host.appeared.emit();
    dispatch.advance(HiddenStart::kPatience * 2);
    EXPECT_EQ(opened, 0);
}

TEST_F(HiddenStartTest, WaitsForAPanelThatComesLater) {
    host.absent.emit();
    dispatch.advance(HiddenStart::kPatience - platform::Duration(1));
    host.appeared.emit();
    dispatch.advance(HiddenStart::kPatience);
    EXPECT_EQ(opened, 0);
}

TEST_F(HiddenStartTest, OpensTheWindowOnceWhereThereIsNone) {
    host.absent.emit();
    dispatch.advance(HiddenStart::kPatience - platform::Duration(1));
    EXPECT_EQ(opened, 0);
    dispatch.advance(platform::Duration(1));
    EXPECT_EQ(opened, 1);
    dispatch.advance(HiddenStart::kPatience);
    EXPECT_EQ(opened, 1);
}

TEST_F(HiddenStartTest, DoesNothingOnceItIsGone) {
    host.absent.emit();
    start.reset();
    dispatch.advance(HiddenStart::kPatience);
    EXPECT_EQ(opened, 0);
}

} // namespace fernwick
