#include "engine/text_blocks.h"

#include "platform/threads/turns.h"

#include <algorithm>
#include <utility>

namespace zelmora {

using platform::Bytes;
using platform::ByteView;
using platform::Status;

namespace {

/// What is read behind a block at first, to find the end of its last line.
constexpr uint64_t kUsualOverlap = 4096; // bytes
static_assert(kUsualOverlap >= EncodingDetector::kLookAhead);

/// How a character below 80 is written: a byte of its own among zero bytes.
struct UnitForm {
    size_t _size;  ///< bytes
    size_t _place; ///< the byte's
};

UnitForm unitFormOf(OrvEncodingInfo info) {
    const size_t size = info.encoding == OrvEncoding::utf16   ? 2
                        : info.encoding == OrvEncoding::utf32 ? 4
                                                              : 1;
    return {size, info.byteOrder == OrvByteOrder::bigEndian ? size - 1 : 0};
}

/// Whether the unit that `bytes` begin with is `character`.
bool beginsWith(ByteView bytes, UnitForm form, char character) {
    if (bytes.size() < form._size || bytes[form._place] != std::byte(character))
        return false;
    const auto zeroes = std::ranges::count(bytes.first(form._size), std::byte{});
    return static_cast<size_t>(zeroes) == form._size - 1;
}

/// Where the first line that ends in `bytes` ends, line break included, if its end can be seen. All
/// of the text is there if `isAll`. Line separators (U+2028) do not count.
std::optional<size_t> firstLineEnd(ByteView bytes, UnitForm form, bool isAll) {
    for (size_t at = 0; at < bytes.size(); at += form._size) {
        const ByteView here = bytes.subspan(at);
        if (beginsWith(here, form, '\n'))
            return at + form._size;
        if (!beginsWith(here, form, '\r'))
            continue;
        const ByteView next = here.subspan(form._size);
        if (beginsWith(next, form, '\n'))
            return at + 2 * form._size;
        if (next.size() >= form._size)
            return at + form._size;
    }
    return isAll ? std::optional(bytes.size()) : std::nullopt;
}

} // namespace

TextBlocks::TextBlocks(std::unique_ptr<platform::ReadableFile> file)
    : _file(std::move(file)),
      _count(
          static_cast<int>(std::max<uint64_t>(1, (_file->size() + kBlockSize - 1) / kBlockSize))),
      _detector(_file->size()) {}

Status TextBlocks::readFrom(int index, uint64_t size, Bytes& buffer) const {
    const uint64_t offset = static_cast<uint64_t>(index) * kBlockSize;
    buffer.resize(std::min(size, _file->size() - offset));
    return _file->read(offset, buffer);
}

bool TextBlocks::look(const Bytes& bytes) {
    return _detector.look(bytes, std::min<size_t>(bytes.size(), kBlockSize));
}

platform::Result<OrvEncodingInfo> TextBlocks::detectEncoding() {
    Status status = readFrom(0, kBlockSize + kUsualOverlap, _first);
    if (status.ok())
        _isDetected = look(_first) || _count == 1;
    // Only what says something is worth believing before the rest is known.
    if (status.ok() && !_isDetected && _detector.encodingInfo().encoding == OrvEncoding::none)
        status = detectInAll();
    if (!status.ok())
        return status.error();
    return _encodingInfo = _detector.encodingInfo();
}

Status TextBlocks::detectInAll() {
    Status status;
    platform::Turns turns(1, _count);
    platform::workInTurns(turns, [&] {
        Bytes bytes;
        while (const auto index = turns.take()) {
            const Status read = readFrom(*index, kBlockSize + kUsualOverlap, bytes);
            if (!turns.await(*index))
                return;
            status = read;
            if (!read.ok() || look(bytes))
                turns.stop();
            else
                turns.pass(*index);
        }
    });
    _isDetected = true;
    return status;
}

bool TextBlocks::confirmEncoding(int index, const Bytes& buffer) {
    if (index == 0 || _isDetected)
        return true;
    _isDetected = look(buffer) || index + 1 == _count;
    return !_isDetected || _detector.encodingInfo() == _encodingInfo;
}

platform::Result<std::optional<ByteView>> TextBlocks::read(int index, Bytes& buffer) const {
    const UnitForm form = unitFormOf(_encodingInfo);
    const uint64_t left = _file->size() - static_cast<uint64_t>(index) * kBlockSize;
    for (const uint64_t overlap : {kUsualOverlap, kBlockSize}) {
        ByteView bytes = _first;
        if (index != 0 || overlap != kUsualOverlap) {
            if (const Status status = readFrom(index, kBlockSize + overlap, buffer); !status.ok())
                return status.error();
            bytes = buffer;
        }
        const bool isAll = bytes.size() == left;
        const auto begin = index == 0 ? std::optional(size_t{0}) : firstLineEnd(bytes, form, isAll);
        if (!begin)
            continue;
        if (bytes.size() <= kBlockSize)
            return std::optional(bytes.subspan(*begin));
        if (const auto end = firstLineEnd(bytes.subspan(kBlockSize), form, isAll))
            return std::optional(bytes.subspan(*begin, kBlockSize + *end - *begin));
    }
    return std::optional<ByteView>();
}

} // namespace zelmora
