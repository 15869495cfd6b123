// The passes over a decoded text, told again without thought for speed: what the fast ones are
// compared with.
#pragma once

#include "textutil/encoding_info.h"

#include <string>

namespace zelmora::fuzz {

OrvLineBreak plainLineBreakType(const std::u16string& text);

/// REQUIRES: both kinds are 1 to 4.
std::u16string plainLineBreaks(const std::u16string& text, OrvLineBreak from, OrvLineBreak to);

std::u16string plainFullWidthKatakana(const std::u16string& text);

} // namespace zelmora::fuzz
