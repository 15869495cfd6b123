// The text utility: what a file's bytes are, bytes to text and back, line breaks, katakana.
#pragma once

#include "platform/text/alterations.h"
#include "platform/text/bytes.h"
#include "textutil/encoding_info.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zelmora {

/// The public face of the text utility; the base does nothing and answers zero, an empty record or
/// no object. The shared instance does the work. Stateless: safe on any thread.
class OrvTextUtility {
  public:
    virtual ~OrvTextUtility() = default;

    /// The one shared text utility, made on the first call and released when the application is
    /// about to terminate. Whoever holds the answer keeps it alive.
    static std::shared_ptr<OrvTextUtility> instance();

    /// Releases the shared object; the handler of the application-will-terminate notification.
    static void callRelease();

    /// The kind of the first line break in `text`, `none` when it has none.
    [[nodiscard]] virtual OrvLineBreak lineBreakTypeOfString(std::u16string_view text) const;

    /// Tells what `data` is: encoding, byte order, byte-order mark. Never fails; absent, empty and
    /// undetermined data give the all-zero record. One pass; allocates nothing.
    [[nodiscard]] virtual OrvEncodingInfo
    encodingInfoOfTextData(std::optional<platform::ByteView> data) const;

    /// Decodes `data` as `encodingInfo` says; a mark it names is skipped. nullopt for absent data,
    /// UTF-16 or UTF-32 without a byte order, and data that is not valid in the encoding.
    [[nodiscard]] virtual std::optional<std::u16string>
    stringWithData(std::optional<platform::ByteView> data, OrvEncodingInfo encodingInfo) const;

    /// Replaces every occurrence of the line break `from` by `to`, in place and in one pass;
    /// replaced text is not searched again. REQUIRES: both kinds are 1 to 4.
    virtual void convertLineBreakOfString(std::u16string& text, OrvLineBreak from,
                                          OrvLineBreak to) const;

    /// Encodes `text` as `encodingInfo` says, with its mark for the Unicode encodings; exactly when
    /// it can, otherwise altering what the encoding cannot hold. nullopt only for absent text.
    [[nodiscard]] virtual std::optional<platform::Bytes>
    dataWithString(std::optional<std::u16string_view> text, OrvEncodingInfo encodingInfo) const;
    /// The same, and adds every character that was altered to `alterations`.
    [[nodiscard]] virtual std::optional<platform::Bytes>
    dataWithString(std::optional<std::u16string_view> text, OrvEncodingInfo encodingInfo,
                   platform::Alterations& alterations) const;

    /// Replaces half-width katakana by full-width katakana, in place.
    virtual void convertHalfToFullKatakanaOfString(std::u16string& text) const;
};

} // namespace zelmora
