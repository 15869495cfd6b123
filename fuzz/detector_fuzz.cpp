// Any bytes: the fast detector answers as its rules do, written out byte by byte.
#include "fuzz_input.h"
#include "tests/textutil/plain_detector.h"
#include "textutil/encoding_detector.h"

using namespace zelmora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const platform::ByteView bytes = fuzz::Input(data, size).rest();
    fuzz::require(detectEncodingInfo(bytes) == plainDetect(bytes));
    return 0;
}
