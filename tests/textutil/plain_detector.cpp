#include "plain_detector.h"

#include <cstdint>

namespace zelmora {
namespace {

class PlainDetector {
  public:
    explicit PlainDetector(platform::ByteView data) : _data(data), _length(data.size()) {}

    OrvEncodingInfo detect() {
        if (!detectMark() && !walk())
            decide();
        return _info;
    }

  private:
    unsigned at(size_t offset) const { return static_cast<unsigned>(_data[offset]); }

    bool answer(OrvEncoding encoding, OrvByteOrder order, bool mark) {
        _info.encoding = encoding;
        _info.byteOrder = order;
        _info.hasBOM = mark;
        return true;
    }

    bool detectMark() {
        if (_length < 2)
            return false;
        if (_length != 2 && at(0) == 0xEF) {
            if (at(1) == 0xBB && at(2) == 0xBF)
                return answer(OrvEncoding::utf8, OrvByteOrder::none, true);
            return false;
        }
        if (at(0) == 0xFF) {
            if (at(1) != 0xFE)
                return false;
            if (_length >= 4 && at(2) == 0 && at(3) == 0)
                return answer(OrvEncoding::utf32, OrvByteOrder::littleEndian, true);
            return answer(OrvEncoding::utf16, OrvByteOrder::littleEndian, true);
        }
        if (at(0) == 0xFE) {
            if (at(1) != 0xFF)
                return false;
            return answer(OrvEncoding::utf16, OrvByteOrder::bigEndian, true);
        }
        if (_length >= 4 && at(0) == 0 && at(1) == 0 && at(2) == 0xFE && at(3) == 0xFF)
            return answer(OrvEncoding::utf32, OrvByteOrder::bigEndian, true);
        return false;
    }

    bool neverUTF8() {
        _isNeverUTF8 = true;
        _utf8 = 0;
        return false;
    }

    bool utf8At(size_t offset) {
        const unsigned lead = at(offset);
        if (lead == 0xFE || lead == 0xFF)
            return neverUTF8();
        size_t ones = 0;
        for (unsigned bit = 0x80; bit >= 0x04 && (lead & bit) != 0; bit >>= 1)
            ++ones;
        if (ones < 2)
            return false;
        size_t bytes = 1;
        for (size_t next = offset + 1; next < _length && bytes < ones; ++next, ++bytes) {
            if ((at(next) & 0xC0) != 0x80)
                break;
        }
        if (bytes != ones)
            return neverUTF8();
        ++_utf8;
        return true;
    }

    bool utfnAt(size_t offset) {
        if (at(offset) != 0)
            return false;
        size_t run = 0;
        while (offset + run < _length && at(offset + run) == 0)
            ++run;
        const bool even = offset % 2 == 0;
        if (run >= 2)
            return answer(OrvEncoding::utf32,
                          offset % 4 == 0 ? OrvByteOrder::bigEndian : OrvByteOrder::littleEndian,
                          false);
        bool isUTF16 = false;
        if (offset % 4 == 1 || offset % 4 == 2 || _length % 4 != 0)
            isUTF16 = true;
        else if (_length - offset < 4)
            isUTF16 = false;
        else
            isUTF16 = at(offset + 2) == 0 || at(offset + 3) == 0;
        if (!isUTF16)
            return false;
        return answer(OrvEncoding::utf16,
                      even ? OrvByteOrder::bigEndian : OrvByteOrder::littleEndian, false);
    }

    bool walk() {
        for (size_t offset = 0; offset < _length; ++offset) {
            const unsigned byte = at(offset);
            if (!_isNeverUTF8 && utf8At(offset))
                continue;
            if (utfnAt(offset))
                return true;
            if (byte == 0x1B && _length - offset >= 3) {
                const unsigned second = at(offset + 1);
                const unsigned third = at(offset + 2);
                if (second == 0x28 && (third == 0x42 || third == 0x4A)) {
                    ++_jis;
                    continue;
                }
                if (second == 0x24 && (third == 0x40 || third == 0x42))
                    return answer(OrvEncoding::jis, OrvByteOrder::none, false);
            }
            if ((byte >= 0x80 && byte <= 0x8D) || (byte >= 0x90 && byte <= 0x9F)) {
                for (size_t rest = offset; rest < _length; ++rest) {
                    if (utfnAt(rest))
                        return true;
                }
                return answer(_utf8 != 0 ? OrvEncoding::utf8 : OrvEncoding::shiftjis,
                              OrvByteOrder::none, false);
            }
            if (byte < 0x80)
                continue;
            if (byte == 0x8E || byte == 0x8F || byte == 0xA0 || byte == 0xFF)
                ++_euc;
            else if (offset + 1 < _length && at(offset + 1) >= 0xA1 && at(offset + 1) <= 0xFE)
                ++_euc;
        }
        return false;
    }

    void decide() {
        if (_euc == 0 && _jis == 0)
            _info.encoding = OrvEncoding::none;
        else if (_utf8 > _jis && _utf8 > _euc)
            _info.encoding = OrvEncoding::utf8;
        else if (_jis != 0)
            _info.encoding = OrvEncoding::jis;
        else
            _info.encoding = OrvEncoding::eucjp;
    }

    platform::ByteView _data;
    size_t _length;
    OrvEncodingInfo _info;
    uint64_t _euc = 0;
    uint64_t _jis = 0;
    uint64_t _utf8 = 0;
    bool _isNeverUTF8 = false;
};

} // namespace

OrvEncodingInfo plainDetect(platform::ByteView data) {
    return PlainDetector(data).detect();
}

} // namespace zelmora
