// Text is encoded in runs of characters that the encoding holds; each character that ends a run is
// altered by itself. The one thing that looks further is composition: a letter that combining marks
// follow ends a run too, although the encoding may well hold it.
//
// Half-width katakana need no step of their own: all encodings here hold them, but for Mac OS
// Roman, which has no katakana at all.
#include "platform/text/lossy.h"

#include "platform/text/block_scan.h"
#include "platform/text/unicode_codecs.h"

#include <algorithm>
#include <array>
#include <utf8proc.h>
#include <utility>

namespace zelmora::platform {
namespace {

struct Twins {
    char16_t _one;
    char16_t _other;
};

/// Characters that tables choose between for one and the same code, and at the end what comes out
/// of decompositions and its common form.
constexpr std::array kTwins = {
    Twins{0x301C, 0xFF5E}, // wave dash, fullwidth tilde
    Twins{0x2016, 0x2225}, // double vertical line, parallel to
    Twins{0x2212, 0xFF0D}, // minus sign, fullwidth hyphen-minus
    Twins{0x2014, 0x2015}, // em dash, horizontal bar
    Twins{0x00A2, 0xFFE0}, // cent sign
    Twins{0x00A3, 0xFFE1}, // pound sign
    Twins{0x00AC, 0xFFE2}, // not sign
    Twins{0x00A6, 0xFFE4}, // broken bar
    Twins{0x00A5, 0xFFE5}, // yen sign
    Twins{0x203E, 0xFFE3}, // overline, fullwidth macron
    Twins{0x3099, 0x309B}, // sound marks: combining, by themselves
    Twins{0x309A, 0x309C},
    Twins{0x2044, 0x002F}, // fraction slash, as in the decomposition of one half; solidus
};

constexpr char16_t kSubstitute = u'?';

/// A code point and all that it can decompose into; 18 is the most in Unicode.
using CodePoints = std::array<utf8proc_int32_t, 32>;

/// Whether `unit` is a mark that some character of a legacy encoding is composed with.
struct IsComposingMark {
    bool operator()(char16_t unit) const {
        return ((unit >= 0x0300) & (unit <= 0x036F)) | (unit == 0x3099) | (unit == 0x309A);
    }
};

bool isMark(utf8proc_int32_t codePoint) {
    const utf8proc_category_t category = utf8proc_category(codePoint);
    return category == UTF8PROC_CATEGORY_MN || category == UTF8PROC_CATEGORY_MC ||
           category == UTF8PROC_CATEGORY_ME;
}

bool isLetterOrNumber(utf8proc_int32_t codePoint) {
    const utf8proc_category_t category = utf8proc_category(codePoint);
    return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO &&
           !isMark(codePoint);
}

/// The first unit from `in` on that a composing mark follows, `end` when there is none.
const char16_t* findComposing(const char16_t* in, const char16_t* end) {
    if (in == end)
        return end;
    const size_t count = static_cast<size_t>(end - in);
    const size_t mark = findFirstUnit(in, count, IsComposingMark(), 1);
    return mark < count ? in + mark - 1 : end;
}

/// The code point at `in`, a lone surrogate as it is; moves `in` past it.
utf8proc_int32_t nextCodePoint(const char16_t*& in, const char16_t* end) {
    const char16_t unit = *in++;
    if (!isHighSurrogate(unit) || in == end || !isLowSurrogate(*in))
        return unit;
    return static_cast<utf8proc_int32_t>(codePointOfPair(unit, *in++));
}

class LossyPass {
  public:
    LossyPass(std::u16string_view text, TextEncoder& encoder, Alterations& alterations)
        : _encoder(encoder), _alterations(alterations), _begin(text.data()), _in(_begin),
          _end(_in + text.size()) {
        _bytes.reserve(2 * text.size());
    }

    Bytes run() {
        const char16_t* composing = findComposing(_in, _end);
        while (_in != _end) {
            if (composing < _in)
                composing = findComposing(_in, _end);
            _in = _encoder.encode(_in, composing, _bytes);
            if (_in == _end)
                break;
            if (_in == composing) {
                writeComposed();
                continue;
            }
            const char16_t* const character = _in;
            alter(nextCodePoint(_in, _end), character, character != _begin);
        }
        _encoder.finish(_bytes);
        return std::move(_bytes);
    }

  private:
    void write(std::u16string_view units) {
        const char16_t* const end = units.data() + units.size();
        [[maybe_unused]] const char16_t* const stop = _encoder.encode(units.data(), end, _bytes);
        _written = units;
    }

    /// The character, or its twin, in the form that the encoding holds; U+0000 when it has neither.
    char16_t heldForm(utf8proc_int32_t codePoint) const {
        if (codePoint > 0xFFFF)
            return 0;
        const char16_t unit = static_cast<char16_t>(codePoint);
        if (_encoder.holds(unit))
            return unit;
        for (const auto& [one, other] : kTwins) {
            if (unit == one || unit == other) {
                const char16_t twin = unit == one ? other : one;
                return _encoder.holds(twin) ? twin : u'\0';
            }
        }
        return 0;
    }

    bool writeHeldForm(utf8proc_int32_t codePoint) {
        const char16_t form = heldForm(codePoint);
        if (form != 0)
            write({&form, 1});
        return form != 0;
    }

    /// Writes all of the code points if every one has a form, otherwise nothing.
    bool writeAll(const utf8proc_int32_t* codePoints, utf8proc_ssize_t count) {
        std::array<char16_t, std::tuple_size_v<CodePoints>> units;
        for (utf8proc_ssize_t i = 0; i < count; ++i) {
            const size_t index = static_cast<size_t>(i);
            units[index] = heldForm(codePoints[index]);
            if (units[index] == 0)
                return false;
        }
        write({units.data(), static_cast<size_t>(count)});
        return true;
    }

    /// Writes the unit at `_in` composed with the marks that follow it, and those marks that do not
    /// compose, altered.
    void writeComposed() {
        const char16_t* const letter = _in;
        CodePoints codePoints;
        codePoints[0] = *_in++;
        size_t count = 1;
        while (_in != _end && count < codePoints.size() && IsComposingMark()(*_in))
            codePoints[count++] = *_in++;
        const utf8proc_ssize_t composed = utf8proc_normalize_utf32(
            codePoints.data(), static_cast<utf8proc_ssize_t>(count),
            static_cast<utf8proc_option_t>(UTF8PROC_COMPOSE | UTF8PROC_STABLE));
        const size_t left = static_cast<size_t>(composed);
        for (size_t i = 0; i < left; ++i) // what is left over stood at the end
            alter(codePoints[i], i == 0 ? letter : _in - (left - i), i > 0);
    }

    /// Writes the first of these that the encoding holds: the character itself or its twin; its
    /// decomposition; its base letter, for a mark on the character before it nothing; "?".
    /// `place` is where the character stands in the text.
    void alter(utf8proc_int32_t codePoint, const char16_t* place, bool isAfterCharacter) {
        _written.clear();
        if (!writeHeldForm(codePoint) && !writeDecomposed(codePoint) &&
            (!isAfterCharacter || !isMark(codePoint)))
            write({&kSubstitute, 1});
        const bool isKept = _written.size() == 1 && _written[0] == codePoint;
        if (!isKept)
            _alterations.add(static_cast<size_t>(place - _begin), static_cast<char32_t>(codePoint),
                             _written);
    }

    bool writeDecomposed(utf8proc_int32_t codePoint) {
        CodePoints parts;
        int boundary = 0;
        const utf8proc_ssize_t count = utf8proc_decompose_char(
            codePoint, parts.data(), static_cast<utf8proc_ssize_t>(parts.size()),
            static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_COMPAT), &boundary);
        if (count < 1 || (count == 1 && parts[0] == codePoint))
            return false;
        CodePoints composed = parts;
        const utf8proc_ssize_t composedCount = utf8proc_normalize_utf32(
            composed.data(), count,
            static_cast<utf8proc_option_t>(UTF8PROC_COMPOSE | UTF8PROC_STABLE));
        if (writeAll(composed.data(), composedCount) || writeAll(parts.data(), count))
            return true;
        return isLetterOrNumber(parts[0]) &&
               std::all_of(parts.begin() + 1, parts.begin() + count, isMark) &&
               writeHeldForm(parts[0]);
    }

    TextEncoder& _encoder;
    Alterations& _alterations;
    const char16_t* const _begin;
    const char16_t* _in;
    const char16_t* const _end;
    Bytes _bytes;
    std::u16string _written; ///< by the last write
};

} // namespace

Bytes encodeLossily(std::u16string_view text, TextEncoder& encoder, Alterations& alterations) {
    return LossyPass(text, encoder, alterations).run();
}

} // namespace zelmora::platform
