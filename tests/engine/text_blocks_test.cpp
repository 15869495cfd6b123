// Blocks of a text are whole lines and together the text, wherever its line ends fall.

#include "engine/text_blocks.h"
#include "tests/support/temporary_directory.h"
#include "textutil/text_utility_private.h"

#include <gtest/gtest.h>

namespace zelmora::test {
namespace {

using platform::Bytes;

class TextBlocksTest : public ::testing::Test {
  protected:
    /// The blocks of a file with these contents; one that cannot be cut is "uncut".
    std::vector<std::string> blocksOf(std::string_view contents) const {
        auto& files = platform::FileManager::defaultManager();
        auto file = files.openFileAtPath(folder.writeFile("text", contents));
        TextBlocks blocks(std::move(*file));
        EXPECT_TRUE(blocks.detectEncoding().ok());
        std::vector<std::string> texts;
        for (int index = 0; index < blocks.count(); ++index) {
            Bytes buffer;
            const auto block = blocks.read(index, buffer);
            texts.emplace_back(*block ? platform::charsOf(**block) : "uncut");
        }
        EXPECT_TRUE(blocks.checkUnchanged().ok());
        return texts;
    }

    TemporaryDirectory folder;
};

TEST_F(TextBlocksTest, AreCutBehindALineEndAndNowhereElse) {
    const OrvTextUtilityPrivate utility;
    const OrvEncodingInfo records[] = {
        {OrvEncoding::shiftjis},
        {OrvEncoding::jis},
        {OrvEncoding::utf8, OrvByteOrder::none, true},
        {OrvEncoding::utf16, OrvByteOrder::littleEndian, true},
        {OrvEncoding::utf32, OrvByteOrder::bigEndian, true},
    };
    for (const auto& record : records) {
        const size_t unit = record.encoding == OrvEncoding::utf16   ? 2
                            : record.encoding == OrvEncoding::utf32 ? 4
                                                                    : 1;
        const size_t block = TextBlocks::kBlockSize / unit;
        // Where the first line break is, from the end of the first block on: before it, across it,
        // where the first look still sees it or no longer does, and out of sight.
        std::vector<int> distances{4093, 4094, 4095, 4096, 9000, 300'000};
        for (int near = -9; near < 3; ++near)
            distances.push_back(near);
        for (const int distance : distances) {
            for (const std::u16string_view lineBreak : {u"\n", u"\r", u"\r\n", u"\r\r\n"}) {
                // U+0A0D has the bytes of line ends in it, and is none.
                std::u16string text = u"\u6F22\u5B57\n";
                text.resize(block + static_cast<size_t>(distance), unit == 1 ? u'a' : u'\u0A0D');
                text.append(lineBreak);
                for (size_t left = 2 * block; left > 1000; left -= 1000)
                    text.append(999, u'z').push_back(u'\r');
                const Bytes bytes = *utility.dataWithString(text, record);
                const auto blocks = blocksOf(platform::charsOf(bytes));

                SCOPED_TRACE(testing::Message() << "encoding " << int(record.encoding) << ", break "
                                                << lineBreak.size() << " at " << distance);
                EXPECT_EQ(blocks[0] == "uncut", distance == 300'000);
                if (distance == 300'000)
                    continue;
                std::string together;
                for (const auto& each : blocks) {
                    together += each;
                    const auto lines = *utility.stringWithData(platform::bytesOf(together), record);
                    ASSERT_TRUE(text.starts_with(lines)); // also: no character is cut
                    EXPECT_TRUE(lines.ends_with(u'\n') || lines.ends_with(u'\r'));
                    EXPECT_FALSE(lines.ends_with(u'\r') && text[lines.size()] == u'\n');
                }
                EXPECT_TRUE(together == platform::charsOf(bytes));
            }
        }
    }
}

} // namespace
} // namespace zelmora::test
