// A text read and written a piece at a time, so that a large one never has to be in memory whole.
//
// A piece is a number of whole lines: no line break, no surrogate pair, no letter with its sound
// mark and no sequence that is one code reaches beyond a line, so what is done to each piece by
// itself is done to the text. A line that is longer than a piece makes the piece longer.
#pragma once

#include "platform/text/text_coders.h"
#include "textutil/encoding_info.h"

#include <memory>
#include <string>
#include <string_view>

namespace zelmora {

/// Decodes the bytes of a text from the first to the last.
class TextReader {
  public:
    /// `data` must outlive the reader. A mark that `encodingInfo` names is skipped.
    TextReader(platform::ByteView data, OrvEncodingInfo encodingInfo);

    /// Makes `piece` the next lines. NO at the end, and when what follows is not valid in the
    /// encoding: then hasFailed() holds.
    bool read(std::u16string& piece);

    /// Also for UTF-16 and UTF-32 without a byte order, which cannot be read at all.
    [[nodiscard]] bool hasFailed() const { return _hasFailed; }

    /// At the end: whether a text that went on here would be read otherwise than from its
    /// beginning. REQUIRES: it has not failed.
    [[nodiscard]] bool hasSwitched() const { return _decoder->hasSwitched(); }

  private:
    platform::ByteView _data; ///< what is left of it
    std::unique_ptr<platform::TextDecoder> _decoder;
    std::u16string _begun; ///< decoded, but part of the next piece
    bool _hasFailed;
};

/// Encodes the pieces of a text, exactly or not at all.
class TextWriter {
  public:
    /// Appends to `bytes`, which must outlive the writer and may be emptied between two calls;
    /// begins with the mark that `encodingInfo` asks for.
    TextWriter(OrvEncodingInfo encodingInfo, platform::Bytes& bytes);

    /// NO when the encoding does not hold a character of `piece`; nothing may be written then.
    [[nodiscard]] bool write(std::u16string_view piece);

    /// Appends what has to follow the last piece.
    void finish() { _encoder->finish(_bytes); }

  private:
    platform::Bytes& _bytes;
    std::unique_ptr<platform::TextEncoder> _encoder;
};

} // namespace zelmora
