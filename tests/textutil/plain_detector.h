// The detector's rules written out byte by byte, without thought for speed: what the fast detector
// is compared with.
#pragma once

#include "platform/text/bytes.h"
#include "textutil/encoding_info.h"

namespace zelmora {

OrvEncodingInfo plainDetect(platform::ByteView data);

} // namespace zelmora
