#include "support/Base64.h"

#include <gtest/gtest.h>

namespace fernwick::support {
namespace {

struct Base64Row {
    std::string name;
    std::string_view bytes;
    std::string text;
};

class Base64 : public testing::TestWithParam<Base64Row> {};

TEST_P(Base64, Encodes) {
    std::string out = "before ";
    appendBase64(out, GetParam().bytes);
    EXPECT_EQ(out, "before " + GetParam().text);
    EXPECT_EQ(base64Size(GetParam().bytes.size()), GetParam().text.size());
}

// The first seven are the test vectors of RFC 4648, section 10.
INSTANTIATE_TEST_SUITE_P(
    Vectors, Base64,
    testing::Values(Base64Row{"Empty", "", ""}, Base64Row{"F", "f", "Zg=="}, Base64Row{"Fo", "fo", "Zm8="},
                    Base64Row{"Foo", "foo", "Zm9v"}, Base64Row{"Foob", "foob", "Zm9vYg=="},
                    Base64Row{"Fooba", "fooba", "Zm9vYmE="}, Base64Row{"Foobar", "foobar", "Zm9vYmFy"},
                    Base64Row{"EveryBit", std::string_view("\xff\xef\xbe\x00", 4), "/+++AA=="},
                    Base64Row{"NonAscii", "mật khẩu", "beG6rXQga2jhuql1"}),
    [](const auto& row) { return row.param.name; });

} // namespace
} // namespace fernwick::support
