// Any bytes in any encoding: what is decoded can be encoded exactly, and is the same again when it
// is read back. Where each character has one code only, the very bytes come back. In pieces of any
// size the answer is the same.
#include "fuzz_input.h"
#include "platform/text/text_coders.h"
#include "platform/text/text_encoding.h"
#include "platform/text/unicode_codecs.h"

#include <algorithm>

using namespace zelmora;
using fuzz::require;
using platform::TextEncoding;

namespace {

bool hasOneCodePerCharacter(TextEncoding encoding) {
    return encoding >= TextEncoding::utf8;
}

std::optional<std::u16string> decodedInPieces(platform::ByteView bytes, TextEncoding encoding,
                                              size_t piece) {
    std::u16string text;
    const auto decoder = platform::makeTextDecoder(encoding);
    while (!bytes.empty()) {
        const size_t before = bytes.size();
        if (!decoder->decode(bytes, piece, text))
            return std::nullopt;
        require(bytes.size() + std::min(piece, before) <= before);
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const auto encoding = static_cast<TextEncoding>(input.below(10));
    const size_t piece = input.byte() + 1u;
    const std::string source = input.repeatedRest(20'000);
    const platform::ByteView bytes = platform::bytesOf(source);
    const auto text = platform::decodeText(bytes, encoding);
    require(decodedInPieces(bytes, encoding, piece) == text);
    if (!text)
        return 0;
    require(platform::findLoneSurrogate(*text) == text->size());
    const auto written = platform::encodeText(*text, encoding);
    require(written.has_value());
    require(platform::decodeText(*written, encoding) == text);
    platform::Alterations alterations;
    require(platform::encodeTextLossy(*text, encoding, alterations) == written);
    require(alterations.count == 0);
    if (hasOneCodePerCharacter(encoding))
        require(std::ranges::equal(*written, bytes));
    return 0;
}
