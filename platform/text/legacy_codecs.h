// The codecs of the encodings that are older than Unicode. A decoder rejects a code that is
// unassigned or cut off; an encoder serves the strict and the lossy pass alike.
#pragma once

#include "platform/text/text_coders.h"

#include <memory>

namespace zelmora::platform {

std::unique_ptr<TextDecoder> makeMacJapaneseDecoder();
std::unique_ptr<TextDecoder> makeCodePage932Decoder();
std::unique_ptr<TextDecoder> makeISO2022JPDecoder();
std::unique_ptr<TextDecoder> makeEUCJPDecoder();
std::unique_ptr<TextDecoder> makeMacOSRomanDecoder();

std::unique_ptr<TextEncoder> makeMacJapaneseEncoder();
std::unique_ptr<TextEncoder> makeCodePage932Encoder();
std::unique_ptr<TextEncoder> makeISO2022JPEncoder();
std::unique_ptr<TextEncoder> makeEUCJPEncoder();
std::unique_ptr<TextEncoder> makeMacOSRomanEncoder();

} // namespace zelmora::platform
