// A text in a file, read in blocks that can be converted each by itself, whatever the order.
//
// A block is some whole lines. Where it begins and ends is told from the bytes around a multiple of
// the block size alone: in every encoding a line end is known by its own bytes. So any thread can
// read any block, and memory holds no more of the text than the blocks in hand.
#pragma once

#include "platform/files/file_manager.h"
#include "textutil/encoding_detector.h"

#include <memory>
#include <optional>

namespace zelmora {

class TextBlocks {
  public:
    static constexpr uint64_t kBlockSize = 256 * 1024; ///< bytes, about; some make an L2 cache full

    explicit TextBlocks(std::unique_ptr<platform::ReadableFile> file);

    /// How many there are; one for an empty text.
    [[nodiscard]] int count() const { return _count; }

    /// Tells the encoding by the first block or, if that tells nothing, by all of the text. To be
    /// called first, and once.
    platform::Result<OrvEncodingInfo> detectEncoding();

    /// Reads block `index` into `buffer`, among what surrounds it. Answers where it is in there;
    /// nullopt when the lines are too long to be cut there. Safe on several threads, each with a
    /// buffer of its own, once the encoding has been detected.
    platform::Result<std::optional<platform::ByteView>> read(int index,
                                                             platform::Bytes& buffer) const;

    /// Whether the encoding may still be right when block `index`, which has been read into
    /// `buffer`, is taken into account; with the last block, whether it is. To be asked of each
    /// block once, in their order.
    bool confirmEncoding(int index, const platform::Bytes& buffer);

    /// Whether all that has been read is one state of the file; EAGAIN if not.
    platform::Status checkUnchanged() const { return _file->checkUnchanged(); }

  private:
    /// Reads up to `size` bytes from the beginning of a block on.
    platform::Status readFrom(int index, uint64_t size, platform::Bytes& buffer) const;

    platform::Status detectInAll();
    /// Lets the detector see the next block; answers whether no more can change its answer.
    bool look(const platform::Bytes& bytes);

    std::unique_ptr<platform::ReadableFile> _file;
    int _count;
    platform::Bytes _first; ///< the first block and more, once it is read
    EncodingDetector _detector;
    bool _isDetected = false;      ///< the detector has seen what it needs
    OrvEncodingInfo _encodingInfo; ///< the detector's answer when it was asked for
};

} // namespace zelmora
