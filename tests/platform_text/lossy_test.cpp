#include "codec_helpers.h"
#include "platform/text/utf8.h"

#include <gtest/gtest.h>
#include <sstream>

namespace zelmora::platform {
namespace {

using enum TextEncoding;

/// `text` as `encoding` reads it again.
std::u16string altered(std::u16string_view text, TextEncoding encoding) {
    Alterations alterations;
    return decodeText(encodeTextLossy(text, encoding, alterations), encoding).value();
}

TEST(LossyEncoding, altersWhatTheEncodingLacks) {
    const struct {
        TextEncoding _encoding;
        std::u16string _text;
        std::u16string _written; ///< as the encoding reads it again
    } cases[] = {
        // Twins.
        {codePage932, u"\u301C\u2016\u2212\u2014\u00A2\u00A3\u00AC\u00A6\u00A5\u203E",
         u"\uFF5E\u2225\uFF0D\u2015\uFFE0\uFFE1\uFFE2\uFFE4\uFFE5\uFFE3"},
        {eucJP, u"\uFF5E\u2225\uFF0D\u2014\uFFE0\uFFE1\uFFE2\u00A5\u203E",
         u"\u301C\u2016\u2212\u2015\u00A2\u00A3\u00AC\uFFE5\uFFE3"},
        // Half-width katakana stay what they are, where there are katakana.
        {iso2022JP, u"\uFF8A\uFF9F\uFF9E", u"\uFF8A\uFF9F\uFF9E"},
        {macOSRoman, u"a\uFF8A\uFF9Fb\uFF9E", u"a??b?"},
        // Marks: composed, left out behind a base letter, or by themselves.
        {eucJP, u"\u304B\u3099\u30CF\u309A", u"\u304C\u30D1"},
        {macOSRoman, u"\u03B1\u0301=\u0338", u"?\u2260"},
        {codePage932, u"cafe\u0301 o\u0302\u0301", u"cafe o"},
        {codePage932, u"\u3099a", u"\u309Ba"},
        {codePage932, u"\u0301\u0301a", u"?a"},
        {eucJP, u"\u845B\xDB40\xDD00\u57CE", u"\u845B\u57CE"}, // a variation selector
        // Decompositions, base letters, and what has neither.
        {codePage932, u"\u00BD\uFB01\u2075\u3300\u00A9", u"1/2fi5\u30A2\u30D1\u30FC\u30C8?"},
        {codePage932, u"\u00E9\u1EC7\u01ED\u00AF\u00BC\u2474\u01C6", u"eeo?1/4(1)?"},
        {eucJP, u"a\U0001F600\U0001D400", u"a?A"},
        // Lone surrogates, escapes, and sequences.
        {eucJP, u"\xD800\u3042\xDC00", u"?\u3042?"},
        {utf8, u"\xD800\u3042\xDC00\xD83D\xDE00", u"?\u3042?\xD83D\xDE00"},
        {iso2022JP, u"\u3042\x1B[m\u3042", u"\u3042?[m\u3042"},
        {macJapanese, u"\u2026\uF87F\uF862XII", u"\u2026\uF87F?XII"},
    };
    for (const auto& [encoding, text, written] : cases) {
        EXPECT_EQ(altered(text, encoding), written) << testing::PrintToString(text);
        EXPECT_EQ(encoded(text, encoding).has_value(), text == written);
    }
}

/// Everything alters to something, alone and with a mark behind it, and text that needs no
/// altering comes out as the strict encoder writes it.
TEST(LossyEncoding, neverFailsAndLeavesTheRest) {
    for (const TextEncoding encoding : {macJapanese, codePage932, iso2022JP, eucJP, macOSRoman}) {
        std::u16string held;
        for (int unit = 0; unit <= 0xFFFF; ++unit) {
            const std::u16string text{static_cast<char16_t>(unit), u'\u3099'};
            EXPECT_NO_THROW(altered(text, encoding)) << std::hex << unit;
            if (encoded(text.substr(0, 1), encoding))
                held += text[0];
        }
        Alterations alterations;
        EXPECT_EQ(encodeTextLossy(held, encoding, alterations), encodeText(held, encoding));
        EXPECT_EQ(alterations.count, 0u);
    }
}

/// Runs longer than what the codecs work on at a time, with altered characters between them.
TEST(LossyEncoding, longTexts) {
    std::u16string text, written;
    for (size_t run = 4090; run < 4100; ++run) {
        text += std::u16string(run, u'a') + u"\u3042\u304B\u3099\u00E9";
        written += std::u16string(run, u'a') + u"\u3042\u304C" + u'e';
    }
    EXPECT_TRUE(altered(text, codePage932) == written);
}

TEST(LossyEncoding, tellsWhatItAltered) {
    const struct {
        TextEncoding _encoding;
        std::u16string _text;
        std::string _listed; ///< offset, code point, what was written
    } cases[] = {
        {eucJP, u"\u3042\uFF5E\u3042\u00BD\uFB01", "1 FF5E \u301C, 3 BD 1/2, 4 FB01 fi, "},
        {codePage932, u"a\xD83D\xDE00\u00E9?\xD83D\xDE00", "1 1F600 ?, 3 E9 e, 5 1F600 ?, "},
        {codePage932, u"k\u0301\u0301\u304B\u3099", "0 1E31 k, 2 301 , "},
    };
    for (const auto& [encoding, text, expected] : cases) {
        Alterations alterations;
        static_cast<void>(encodeTextLossy(text, encoding, alterations));
        std::ostringstream listed;
        listed << std::hex << std::uppercase;
        for (const auto& [offset, codePoint, written] : alterations.listed)
            listed << offset << " " << static_cast<uint32_t>(codePoint) << " "
                   << utf8FromUTF16(written) << ", ";
        EXPECT_EQ(listed.str(), expected);
        EXPECT_EQ(alterations.count, alterations.listed.size());
    }
    constexpr size_t kMost = Alterations::kMostListed;
    Alterations many;
    static_cast<void>(encodeTextLossy(std::u16string(kMost + 5, u'\u00E9'), codePage932, many));
    EXPECT_EQ(many.count, kMost + 5);
    EXPECT_EQ(many.listed.size(), kMost);
}

} // namespace
} // namespace zelmora::platform
