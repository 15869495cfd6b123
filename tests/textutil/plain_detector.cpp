#include "plain_detector.h"

#include <bit>
#include <cstdint>
#include <optional>

namespace zelmora {
namespace {

using namespace std::string_view_literals;
using enum OrvEncoding;
using OrvByteOrder::bigEndian;
using OrvByteOrder::littleEndian;

constexpr struct {
    std::string_view bytes;
    OrvEncoding encoding;
    OrvByteOrder order;
} kMarks[] = {{"\xEF\xBB\xBF", utf8, {}},
              {"\xFF\xFE\0\0"sv, utf32, littleEndian},
              {"\xFF\xFE", utf16, littleEndian},
              {"\xFE\xFF", utf16, bigEndian},
              {"\0\0\xFE\xFF"sv, utf32, bigEndian}};

struct PlainDetector {
    std::string_view data;
    uint64_t euc = 0, jis = 0, utf = 0; ///< how many signs of each were seen
    bool isNeverUTF8 = false;

    /// The byte at `i`; -1 behind the end.
    [[nodiscard]] int at(size_t i) const {
        return i < data.size() ? static_cast<unsigned char>(data[i]) : -1;
    }

    /// Counts a lead byte with as many bytes behind it as it asks for.
    bool isUTF8At(size_t i) {
        const int ones = std::countl_one(static_cast<unsigned char>(at(i)));
        if (isNeverUTF8 || ones < 2)
            return false;
        int bytes = 1;
        while (bytes < ones && (at(i + static_cast<size_t>(bytes)) & 0xC0) == 0x80)
            ++bytes;
        isNeverUTF8 = bytes < ones || ones > 6;
        utf = isNeverUTF8 ? 0 : utf + 1;
        return !isNeverUTF8;
    }

    /// What a zero byte at `i` settles: two are UTF-32's, one by its place in the file.
    [[nodiscard]] std::optional<OrvEncodingInfo> zeroAt(size_t i) const {
        if (at(i) != 0)
            return std::nullopt;
        if (at(i + 1) == 0)
            return OrvEncodingInfo{utf32, i % 4 == 0 ? bigEndian : littleEndian};
        const bool mayBeUTF32 = (i % 4 == 0 || i % 4 == 3) && data.size() % 4 == 0;
        const bool isNextNear = at(i + 3) >= 0 && (at(i + 2) == 0 || at(i + 3) == 0);
        if (mayBeUTF32 && !isNextNear)
            return std::nullopt;
        return OrvEncodingInfo{utf16, i % 2 == 0 ? bigEndian : littleEndian};
    }

    OrvEncodingInfo detect() {
        for (const auto& mark : kMarks)
            if (data.starts_with(mark.bytes))
                return {mark.encoding, mark.order, true};
        for (size_t i = 0; i < data.size(); ++i) {
            if (isUTF8At(i))
                continue;
            if (const auto info = zeroAt(i))
                return *info;
            const auto escape = data.substr(i, 3);
            if (escape == "\x1B$@" || escape == "\x1B$B")
                return {OrvEncoding::jis};
            if (escape == "\x1B(B" || escape == "\x1B(J")
                ++jis;
            const int byte = at(i);
            if (byte >= 0x80 && byte <= 0x9F && byte != 0x8E && byte != 0x8F) {
                for (; i < data.size(); ++i)
                    if (const auto info = zeroAt(i))
                        return *info;
                return {utf != 0 ? utf8 : shiftjis};
            }
            const bool isAlone = byte == 0x8E || byte == 0x8F || byte == 0xA0 || byte == 0xFF;
            if (isAlone || (byte > 0xA0 && at(i + 1) > 0xA0 && at(i + 1) < 0xFF))
                ++euc;
        }
        if (euc == 0 && jis == 0)
            return {};
        return {utf > jis && utf > euc ? utf8 : jis != 0 ? OrvEncoding::jis : eucjp};
    }
};

} // namespace

OrvEncodingInfo plainDetect(platform::ByteView data) {
    return PlainDetector{platform::charsOf(data)}.detect();
}

} // namespace zelmora
