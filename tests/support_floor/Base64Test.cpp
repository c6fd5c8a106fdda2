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

TEST_P(Base64, Decodes) {
    EXPECT_EQ(decodeBase64(GetParam().text), GetParam().bytes);
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

TEST(Base64Decoding, RefusesWhatIsNotExactlyBase64) {
    for (const std::string_view text :
         {"Z", "Zg", "Zg=", "Zg==Zg==", "====", "=", "Z===", "=Zg=", "Zg=g", "Zg==\n", "Zm9v\n", "Zm 9",
          "Zm9v====", "Zm9-", "Zm9_", "Zm9\x80", "Zm9vZm9\xff", "Zm\0v"}) {
        EXPECT_EQ(decodeBase64(text), std::nullopt) << text;
    }
    EXPECT_EQ(decodeBase64(std::string_view("Zm\0v", 4)), std::nullopt);
}

TEST(Base64Decoding, PassesOverTheBitsThatAreLeftOver) {
    EXPECT_EQ(decodeBase64("Zh=="), "f");
    EXPECT_EQ(decodeBase64("Zm9="), "fo");
}

TEST(Base64Decoding, EveryByteAtEveryPlaceComesBack) {
    for (std::size_t size = 1; size <= 40; size = size * 2 + 1) {
        for (std::size_t at = 0; at < size; ++at) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string bytes(size, 'x');
                bytes[at] = static_cast<char>(byte);
                std::string text;
                appendBase64(text, bytes);
                ASSERT_EQ(decodeBase64(text), bytes) << size << " " << at << " " << byte;
            }
        }
    }
}

} // namespace
} // namespace fernwick::support
