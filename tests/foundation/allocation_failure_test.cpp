// When memory runs out, at whatever request: no exception, no leak, the line and the result that
// are promised. The address sanitizer adds its own account of leaks.
#include "failing_allocator.h"
#include "foundation_fixture.h"

#include "foundation/orv_css.h"
#include "foundation/orv_values.h"

#include <functional>
#include <thread>

namespace zelmora::test {

namespace {

const std::string stringLine = "Couldn't allocate the instance of the OrvString.";
const std::string substringLine = "Couldn't allocate the buffer for the string.";
const std::string arrayLine = "Couldn't allocate the instance of the OrvArray. (capacity=3)";
const std::string enumeratorLine =
    "Couldn't allocate the instance of the OrvEnumerator for the array.";
const std::string dictionaryLine = "Could not allocate the dictionary.";
const std::string dataLine = "Can't allocate the object for the OrvDataRef. (size=5)";
const std::string addLine = "Failed adding the object into the array.";
const std::string setLine = "The dictionary could not insert the value.";
const std::string nullValueLine = "Attempt to insert NULL value into the dictionary.";
constexpr const wchar_t* longText = L"longer than a string holds without the heap";

class AllocationTest : public FoundationTest {};
class AllocationScriptTest : public testing::Test {};

/// The lines that `work` writes while the `number`th allocation fails, and whether there was one.
template<typename Work>
Lines linesWithout(size_t number, Work&& work, bool* hasFailed = nullptr) {
    return linesOf([&] {
        const FailingAllocation failing(static_cast<int>(number));
        work();
        if (hasFailed)
            *hasFailed = failing.hasFailed();
    });
}

/// What the application does with a style sheet, from start to end, and more. Answers whether it
/// all worked.
bool runScript() {
    bool isComplete = false;
    OrvFoundationInitialize();
    {
        const Owned pool(OrvTemporaryObjectsPoolCreate());
        if (pool) { // without one a thread must not make temporary objects
            OrvIBase* text = OrvTemporaryStringWithNSString(u"a{b:c} @charset \"Shift_JIS\";\n");
            const Owned parser(OrvCSSParserCreate(text));
            int32_t start = 0, length = 0;
            OrvIBase* rule = OrvCSSParserFindElement(parser.get(), OrvTemporaryString(L"@charset"),
                                                     0, &start, &length);
            OrvCSSParserUpdateCharsetElement(parser.get(), rule, 6, 1);
            OrvCSSParserReplaceElement(parser.get(), rule, start, length);
            OrvStringAppend(text, OrvTemporaryString(longText));
            OrvStringConvertLineBreaks(text, 1, 3);
            const Owned made(OrvCSSParserCreateCharsetElement(parser.get(), 3, 0));
            const Owned dictionary(OrvDictionaryCreate());
            OrvDictionarySetValue(dictionary.get(), OrvCSSElementGetText(made.get()), longText);
            const Owned keys(OrvDictionaryCreateKeys(dictionary.get()));
            const Owned values(OrvDictionaryCreateValues(dictionary.get()));
            isComplete = OrvArrayGetCount(keys.get()) == 1 && OrvArrayGetCount(values.get()) == 1 &&
                         OrvCopyCocoaObject(dictionary.get()) &&
                         OrvStringCopyNSString(text) ==
                             u"a{b:c}@charset \"UTF-32LE\";\r\n"
                             u"longer than a string holds without the heap";
        }
    }
    OrvFoundationTerminate();
    return isComplete;
}

} // namespace

TEST_F(AllocationScriptTest, AnyRequestOfAScriptMayFail) {
    const Lines promised = {stringLine,    addLine,           setLine,
                            nullValueLine, uninitialisedLine, dictionaryLine};
    for (size_t number = 1;; ++number) {
        bool hasFailed = false;
        bool isComplete = false;
        const Lines lines = linesWithout(
            number, [&] { isComplete = runScript(); }, &hasFailed);
        ASSERT_EQ(OrvLiveObjectCount(), 0) << "request " << number;
        for (const std::string& line : lines) {
            const bool isArray =
                line.starts_with("Couldn't allocate the instance of the OrvArray. (capacity=");
            EXPECT_TRUE(isArray || std::ranges::count(promised, line) > 0) << line;
        }
        if (!hasFailed) {
            EXPECT_TRUE(isComplete);
            EXPECT_GT(number, 60U);
            EXPECT_EQ(lines, Lines{});
            break;
        }
    }
}

// Each operation with one expected line for every request that it makes, "" for none.
TEST_F(AllocationTest, CreationAnswersNullWithItsLine) {
    const Owned text = makeText(longText);
    const Owned array(OrvArrayCreate(0));
    const Lines twice(2, stringLine);
    const OrvRange part = {1, 9};
    const struct {
        const char* name;
        std::function<OrvIBase*()> create;
        Lines lines;
    } cases[] = {
        {"wide", [&] { return OrvStringCreateWithWideCString(longText); }, twice},
        {"counted", [&] { return OrvStringCreateWithCharacters(longText, 9); }, twice},
        {"platform", [&] { return OrvStringCreateWithNSString(u"123456789"); }, twice},
        {"upper case", [&] { return OrvStringCreateUppercase(text.get()); }, twice},
        {"empty", [&] { return OrvStringCreateEmpty(); }, {stringLine}},
        {"part", [&] { return OrvStringCreateSubstring(text.get(), part); },
         Lines(2, substringLine)},
        {"format",
         [&] { return OrvStringCreateWithFormat(text.get()); },
         {"", stringLine, stringLine}},
        {"array", [&] { return OrvArrayCreate(3); }, Lines(2, arrayLine)},
        {"enumerator", [&] { return OrvArrayCreateEnumerator(array.get()); }, {enumeratorLine}},
        {"dictionary", [&] { return OrvDictionaryCreate(); }, {dictionaryLine}},
        {"data", [&] { return OrvDataCreate("12345", 5); }, Lines(2, dataLine)},
        {"number", [&] { return OrvNumberCreateWithInt(1); }, {""}},
        {"scanner", [&] { return OrvScannerCreate(text.get()); }, {""}},
        {"element", [&] { return OrvCSSElementCreate(); }, {""}},
        {"parser", [&] { return OrvCSSParserCreate(text.get()); }, {""}}};
    for (const auto& test : cases) {
        const auto& expected = test.lines;
        for (size_t i = 0; i <= expected.size(); ++i) {
            Owned created;
            const Lines lines = linesWithout(i + 1, [&] { created = Owned(test.create()); });
            EXPECT_EQ(static_cast<bool>(created), i == expected.size()) << test.name << " " << i;
            const bool isSilent = i == expected.size() || expected[i].empty();
            EXPECT_EQ(lines, isSilent ? Lines{} : Lines{expected[i]}) << test.name << " " << i;
        }
    }
}

TEST_F(AllocationTest, PoolIsNullOrWhole) {
    std::thread([] {
        bool hasFailed = true;
        for (size_t number = 1; hasFailed; ++number) {
            Owned pool;
            const auto open = [&] { pool = Owned(OrvTemporaryObjectsPoolCreate()); };
            const Lines lines = linesWithout(number, open, &hasFailed);
            EXPECT_EQ(lines, Lines{}) << number;
            EXPECT_EQ(static_cast<bool>(pool), !hasFailed) << number;
            EXPECT_EQ(OrvGetCurrentTemporaryObjectsPool(), pool.get()) << number;
        }
    }).join();
}

TEST_F(AllocationTest, PoolThatCannotGrowReleasesTheObject) {
    const Owned pool(OrvTemporaryObjectsPoolCreate());
    Owned string = makeText(L"a");
    OrvRetain(string.get());
    const FailingAllocation failing(1);
    EXPECT_EQ(OrvTemporaryObjectsPoolAddObject(string.get()), nullptr);
    EXPECT_EQ(OrvGetRetainCount(string.get()), 1U);
}

TEST_F(AllocationTest, ContainersStayWhole) {
    const Owned object = makeText(L"a");
    const Owned array(OrvArrayCreate(1));
    OrvArrayAddObject(array.get(), object.get());
    const Owned dictionary(OrvDictionaryCreate());
    OrvDictionarySetValue(dictionary.get(), object.get(), L"key");
    const Owned other = makeText(L"b");
    const auto failingOnce = [](auto work) { return linesWithout(1, work); };
    EXPECT_EQ(failingOnce([&] { OrvArrayAddObject(array.get(), object.get()); }), Lines{addLine});
    EXPECT_EQ(failingOnce([&] { OrvArrayInsertObjectAtIndex(array.get(), object.get(), 0); }),
              Lines{"Failed inserting the object."});
    EXPECT_EQ(OrvArrayGetCount(array.get()), 1U);
    EXPECT_EQ(failingOnce([&] { OrvDictionarySetValue(dictionary.get(), other.get(), L"key"); }),
              Lines{setLine});
    EXPECT_EQ(OrvDictionaryGetValue(dictionary.get(), L"key"), nullptr);
    EXPECT_EQ(OrvGetRetainCount(object.get()), 2U); // here and in the array
    EXPECT_EQ(OrvGetRetainCount(other.get()), 1U);
}

TEST_F(AllocationTest, StringsStayWhole) {
    const Owned addition = makeText(longText);
    const std::function<void(OrvIBase*)> changes[] = {
        [&](OrvIBase* s) { OrvStringAppend(s, addition.get()); },
        [&](OrvIBase* s) { OrvStringReplaceCharacters(s, addition.get(), 1, 1); },
        [&](OrvIBase* s) { OrvStringConvertLineBreaks(s, 1, 3); },
        [&](OrvIBase* s) { EXPECT_EQ(OrvStringCopyNSString(s), std::nullopt); },
        [&](OrvIBase* s) { EXPECT_EQ(OrvCopyCocoaObject(s), std::nullopt); },
    };
    const std::wstring before = L"line\nline\nline and more\n";
    for (size_t i = 0; i < std::size(changes); ++i) {
        const Owned string = makeText(before);
        const Lines lines = linesWithout(1, [&] { changes[i](string.get()); });
        EXPECT_EQ(stringOf(string.get()), before) << "change " << i;
        EXPECT_EQ(lines, Lines{}) << "change " << i;
    }
}

} // namespace zelmora::test
