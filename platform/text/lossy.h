// Encoding that alters what the encoding cannot hold.
#pragma once

#include "platform/text/alterations.h"
#include "platform/text/legacy_codecs.h"

#include <string_view>

namespace zelmora::platform {

/// Encodes `text` with `encoder`, which must be new, and adds what is altered to `alterations`.
/// Never fails; see encodeTextLossy.
[[nodiscard]] Bytes encodeLossily(std::u16string_view text, TextEncoder& encoder,
                                  Alterations& alterations);

} // namespace zelmora::platform
