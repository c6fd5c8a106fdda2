#include "platform/posix/PropertyListGuard.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace fernwick::platform {

namespace {

constexpr std::string_view kBinaryMagic = "bplist00";
constexpr std::size_t kTrailerSize = 32;
constexpr std::size_t kNodeCost = 128; // of any value, beside its bytes

// Walks the objects of a binary property list, each once. The format: a magic, objects, a table of their
// offsets and a trailer that says where the table is and how wide its numbers are. The first half of an
// object's first byte is its kind, the second half its size or, when that is 15, the sign that an integer
// object with the size follows.
class BinaryWalk {
public:
    explicit BinaryWalk(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] bool isSafe() {
        if (!readTrailer()) {
            return false;
        }
        costs_.assign(objectCount_, kUnknown);
        deepest_.assign(objectCount_, 0);
        return cost(root_, 0).has_value();
    }

private:
    static constexpr std::size_t kUnknown = SIZE_MAX;
    static constexpr std::size_t kBeingWalked = SIZE_MAX - 1;

    struct Object {
        unsigned kind = 0;
        std::size_t size = 0;
        std::size_t start = 0; // of what follows the size
    };

    // A big-endian number of 1 to 8 bytes within the file.
    [[nodiscard]] std::optional<std::size_t> number(std::size_t at, std::size_t width) const {
        if (width == 0 || width > 8 || at > bytes_.size() || bytes_.size() - at < width) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (const char byte : bytes_.substr(at, width)) {
            value = value << 8U | static_cast<unsigned char>(byte);
        }
        return value;
    }

    [[nodiscard]] bool readTrailer() {
        if (bytes_.size() < kBinaryMagic.size() + kTrailerSize) {
            return false;
        }
        const auto trailer = bytes_.size() - kTrailerSize;
        offsetWidth_ = number(trailer + 6, 1).value_or(0);
        referenceWidth_ = number(trailer + 7, 1).value_or(0);
        objectCount_ = number(trailer + 8, 8).value_or(0);
        root_ = number(trailer + 16, 8).value_or(0);
        table_ = number(trailer + 24, 8).value_or(0);
        // Each object takes at least one byte, so a count beyond the file's size is made up.
        return offsetWidth_ >= 1 && offsetWidth_ <= 8 && referenceWidth_ >= 1 && referenceWidth_ <= 8 &&
               objectCount_ <= bytes_.size() && root_ < objectCount_ && table_ <= trailer &&
               objectCount_ <= (trailer - table_) / offsetWidth_;
    }

    [[nodiscard]] std::optional<Object> object(std::size_t index) const {
        const auto at = number(table_ + index * offsetWidth_, offsetWidth_);
        const auto marker = at && *at < table_ ? number(*at, 1) : std::nullopt;
        if (!marker) {
            return std::nullopt;
        }
        Object found{static_cast<unsigned>(*marker >> 4U), *marker & 0xFU, *at + 1};
        if (found.size == 0xF && found.kind != 0 && found.kind != 8) {
            const auto sizeMarker = number(found.start, 1);
            if (!sizeMarker || *sizeMarker >> 4U != 1 || (*sizeMarker & 0xFU) > 3) {
                return std::nullopt;
            }
            const std::size_t width = std::size_t{1} << (*sizeMarker & 0xFU);
            const auto size = number(found.start + 1, width);
            if (!size) {
                return std::nullopt;
            }
            found.size = *size;
            found.start += 1 + width;
        }
        return found;
    }

    // How many bytes follow an object's size, or nothing for a kind that has no place in preferences.
    [[nodiscard]] std::optional<std::size_t> payload(const Object& object) const {
        if (object.size > bytes_.size()) {
            return std::nullopt;
        }
        switch (object.kind) {
        case 0x0: // null and booleans
            return 0;
        case 0x1: // integers of 1, 2, 4, 8 or 16 bytes
            return object.size <= 4 ? std::optional(std::size_t{1} << object.size) : std::nullopt;
        case 0x2: // real numbers of 4 or 8 bytes
            return object.size == 2 || object.size == 3 ? std::optional(std::size_t{1} << object.size)
                                                        : std::nullopt;
        case 0x3: // dates of 8 bytes; libplist ends the process over shorter ones
            return object.size == 3 ? std::optional(std::size_t{8}) : std::nullopt;
        case 0x4: // bytes
        case 0x5: // ASCII text
            return object.size;
        case 0x6: // UTF-16 text
            return object.size * 2;
        case 0xA: // array
            return object.size * referenceWidth_;
        case 0xD: // dictionary: all keys, then all values
            return object.size * referenceWidth_ * 2;
        default:
            return std::nullopt;
        }
    }

    // libplist ends the process over a dictionary key with a NUL in it.
    [[nodiscard]] bool isTextWithNul(const Object& object, std::size_t length) const {
        const auto bytes = bytes_.substr(object.start, length);
        if (object.kind == 0x5) {
            return bytes.contains('\0');
        }
        for (std::size_t at = 0; object.kind == 0x6 && at + 1 < length; at += 2) {
            if (bytes[at] == '\0' && bytes[at + 1] == '\0') {
                return true;
            }
        }
        return false;
    }

    // What the object and all that it leads to cost in memory, shared objects once for each use. Nothing when
    // it leads to itself, out of the file, too deep or to too much.
    [[nodiscard]] std::optional<std::size_t> cost(std::size_t index, std::size_t depth) {
        if (index >= objectCount_ || depth > kDeepestPropertyList || costs_[index] == kBeingWalked) {
            return std::nullopt;
        }
        // A known cost stands for a subtree whose depth was measured from another place, so containers that
        // were walked lower down are trusted only there; `deepest_` remembers how far below itself each one
        // reaches.
        if (costs_[index] != kUnknown) {
            return depth + deepest_[index] > kDeepestPropertyList ? std::nullopt : std::optional(costs_[index]);
        }
        const auto found = object(index);
        const auto length = found ? payload(*found) : std::nullopt;
        if (!length || found->start > table_ || table_ - found->start < *length) {
            return std::nullopt;
        }
        if (isTextWithNul(*found, *length)) {
            return std::nullopt;
        }
        std::size_t total = kNodeCost + *length;
        const bool container = found->kind == 0xA || found->kind == 0xD;
        costs_[index] = kBeingWalked;
        for (std::size_t at = 0; container && at < *length; at += referenceWidth_) {
            const auto child = number(found->start + at, referenceWidth_);
            const auto below = child ? cost(*child, depth + 1) : std::nullopt;
            total += below.value_or(kLargestPropertyList);
            if (!below || total > kLargestPropertyList) {
                return std::nullopt;
            }
            deepest_[index] = std::max(deepest_[index], 1 + deepest_[*child]);
        }
        costs_[index] = total;
        return total;
    }

    std::string_view bytes_;
    std::size_t offsetWidth_ = 0;
    std::size_t referenceWidth_ = 0;
    std::size_t objectCount_ = 0;
    std::size_t root_ = 0;
    std::size_t table_ = 0;
    std::vector<std::size_t> costs_;   // by object
    std::vector<std::size_t> deepest_; // levels below each object
};

// Where to go on after a construct that starts at `at` and ends with `end`.
std::size_t skip(std::string_view bytes, std::size_t at, std::string_view end) {
    const auto found = bytes.find(end, at);
    return found == std::string_view::npos ? bytes.size() : found + end.size();
}

// XML: no more containers open at once than the bound.
bool isShallowXml(std::string_view bytes) {
    std::size_t depth = 0;
    for (auto at = bytes.find('<'); at < bytes.size(); at = bytes.find('<', at)) {
        const auto rest = bytes.substr(at);
        if (rest.starts_with("<!--")) {
            at = skip(bytes, at, "-->");
            continue;
        }
        if (rest.starts_with("<![CDATA[")) {
            at = skip(bytes, at, "]]>");
            continue;
        }
        const auto end = skip(bytes, at, ">");
        const bool emptyElement = end >= 2 && bytes[end - 2] == '/';
        if (!emptyElement && (rest.starts_with("<array") || rest.starts_with("<dict"))) {
            if (++depth > kDeepestPropertyList) {
                return false;
            }
        } else if (depth > 0 && (rest.starts_with("</array") || rest.starts_with("</dict"))) {
            --depth;
        }
        at = end;
    }
    return true;
}

} // namespace

bool isSafePropertyList(std::string_view bytes) {
    if (bytes.size() > kLargestPropertyList) {
        return false;
    }
    return bytes.starts_with(kBinaryMagic) ? BinaryWalk(bytes).isSafe() : isShallowXml(bytes);
}

} // namespace fernwick::platform
