// Tells the encoding of a file's bytes by features of the bytes: a byte-order mark, zero bytes,
// escape sequences, and bytes that only one of the Japanese encodings uses.
#pragma once

#include "platform/text/bytes.h"
#include "textutil/encoding_info.h"

#include <cstdint>

namespace zelmora {

/// The working state of one detection; zeroed at its start, then passed to each step.
struct DetectEncodingContext {
    OrvEncodingInfo encodingInfo; ///< the answer so far
    uint64_t eucFeatures = 0;     ///< signs of EUC-JP; once isNeverUTF8, exact only in being zero
    uint64_t jisFeatures = 0;     ///< escapes back to a single-byte set
    uint64_t utf8Features = 0;    ///< multi-byte sequences of UTF-8's form
    bool isNeverUTF8 = false;     ///< such a sequence was broken; UTF-8 is tested no longer
    bool hasShiftJISByte = false; ///< only zero bytes can still change the answer
    const uint8_t* textBytes = nullptr; ///< the piece of the data that is looked at, borrowed
    const uint8_t* curBytes = nullptr;  ///< the byte at textOffset
    uint64_t textOffset = 0;            ///< in the data
    uint64_t lookEnd = 0;               ///< where in the data the looking is to end for now
    uint64_t textLength = 0;            ///< bytes of the data
};

/// Names the encoding, byte order and mark of a text that is read a piece at a time. No allocation.
class EncodingDetector {
  public:
    /// The most bytes behind the ones to look at that matter for these.
    static constexpr size_t kLookAhead = 8;

    /// For a text of `length` bytes.
    explicit EncodingDetector(uint64_t length) { _context.textLength = length; }

    /// Looks at the next `count` bytes of the text. `bytes` begins with them; behind them it has
    /// kLookAhead more, or all that are left. Answers whether the rest cannot change the answer.
    bool look(platform::ByteView bytes, size_t count);

    /// The answer, once all has been looked at or the rest does not matter; all zero when nothing
    /// tells.
    [[nodiscard]] OrvEncodingInfo encodingInfo() const;

  private:
    DetectEncodingContext _context;
    bool _isSettled = false;
};

/// The same for a text that is in memory whole.
[[nodiscard]] OrvEncodingInfo detectEncodingInfo(platform::ByteView data);

/// Whether the data begins with a byte-order mark; fills encodingInfo if so.
bool detectEncodingInfoWithBOM(DetectEncodingContext& context);

/// Whether a sequence of UTF-8's form, 2 to 6 bytes, begins at the current byte, and counts it. A
/// broken one clears the count and rules UTF-8 out. REQUIRES: the offset is within the data.
bool checkUTF8Features(DetectEncodingContext& context);

/// Whether a zero byte here shows UTF-16 or UTF-32; fills encodingInfo if so. REQUIRES: the offset
/// is within the data.
bool checkUTFnFeatures(DetectEncodingContext& context);

/// Control characters, space and DEL. With isIncludedInJISX0201Roman: every byte below 80.
inline bool isIncludedInASCII(uint8_t byte) {
    return byte <= 0x20 || byte == 0x7F;
}

/// The visible characters, 21 to 7E.
inline bool isIncludedInJISX0201Roman(uint8_t byte) {
    return byte >= 0x21 && byte <= 0x7E;
}

} // namespace zelmora
