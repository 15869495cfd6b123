// When memory runs out, at whatever request: no exception, no leak, the line and the result that
// are promised. The address sanitizer adds its own account of leaks.
#include "foundation_fixture.h"

#include "foundation/orv_css.h"
#include "foundation/orv_values.h"

#include <cstdlib>
#include <functional>
#include <new>
#include <thread>

namespace {

/// Which allocation of this thread fails, counted from the next; 0: none, negative: it has failed.
thread_local int allocationsToFailure = 0;

} // namespace

// Not inlined, so that the compiler sees pairs of new and delete.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (allocationsToFailure > 0 && --allocationsToFailure == 0) {
        allocationsToFailure = -1;
        return nullptr;
    }
    return std::malloc(size > 0 ? size : 1);
}

[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}

[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace zelmora::test {

namespace {

const std::string stringLine = "Couldn't allocate the instance of the OrvString.";
const std::string dictionaryLine = "Could not allocate the dictionary.";
const std::string addLine = "Failed adding the object into the array.";
const std::string setLine = "The dictionary could not insert the value.";
const std::string nullValueLine = "Attempt to insert NULL value into the dictionary.";
constexpr const wchar_t* longText = L"longer than a string holds without the heap";

class AllocationTest : public FoundationTest {};

/// The lines that `work` writes while the `number`th allocation fails, and whether there was one.
template<typename Work>
Lines linesWithout(size_t number, Work&& work, bool* hasFailed = nullptr) {
    return linesOf([&] {
        allocationsToFailure = static_cast<int>(number);
        work();
        if (hasFailed)
            *hasFailed = allocationsToFailure < 0;
        allocationsToFailure = 0;
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

TEST(AllocationScriptTest, AnyRequestOfAScriptMayFail) {
    const Lines promised = {stringLine,    addLine,           setLine,
                            nullValueLine, uninitialisedLine, dictionaryLine};
    size_t number = 0;
    for (bool hasFailed = true; hasFailed;) {
        bool isComplete = false;
        const auto script = [&] { isComplete = runScript(); };
        for (const std::string& line : linesWithout(++number, script, &hasFailed)) {
            const bool isArray =
                line.starts_with("Couldn't allocate the instance of the OrvArray. (capacity=");
            EXPECT_TRUE(hasFailed && (isArray || std::ranges::count(promised, line) > 0)) << line;
        }
        ASSERT_EQ(OrvLiveObjectCount(), 0) << "request " << number;
        EXPECT_TRUE(hasFailed || isComplete);
    }
    EXPECT_GT(number, 60U);
}

// Each operation with one expected line for every request that it makes, "" for none.
TEST_F(AllocationTest, CreationAnswersNullWithItsLine) {
    const Owned text = makeText(longText);
    const Owned array(OrvArrayCreate(0));
    const Lines twice(2, stringLine);
    const std::pair<std::function<OrvIBase*()>, Lines> cases[] = {
        {[&] { return OrvStringCreateWithWideCString(longText); }, twice},
        {[&] { return OrvStringCreateWithCharacters(longText, 9); }, twice},
        {[&] { return OrvStringCreateWithNSString(u"123456789"); }, twice},
        {[&] { return OrvStringCreateUppercase(text.get()); }, twice},
        {[&] { return OrvStringCreateEmpty(); }, {stringLine}},
        {[&] { return OrvStringCreateWithFormat(text.get()); }, {"", stringLine, stringLine}},
        {[&] {
             return OrvStringCreateSubstring(text.get(), {1, 9});
         },
         Lines(2, "Couldn't allocate the buffer for the string.")},
        {[&] { return OrvArrayCreate(3); },
         Lines(2, "Couldn't allocate the instance of the OrvArray. (capacity=3)")},
        {[&] { return OrvArrayCreateEnumerator(array.get()); },
         {"Couldn't allocate the instance of the OrvEnumerator for the array."}},
        {[&] { return OrvDictionaryCreate(); }, {dictionaryLine}},
        {[&] { return OrvDataCreate("12345", 5); },
         Lines(2, "Can't allocate the object for the OrvDataRef. (size=5)")},
        {[&] { return OrvNumberCreateWithInt(1); }, {""}},
        {[&] { return OrvScannerCreate(text.get()); }, {""}},
        {[&] { return OrvCSSElementCreate(); }, {""}},
        {[&] { return OrvCSSParserCreate(text.get()); }, {""}}};
    for (const auto& test : cases) {
        const auto& [create, expected] = test;
        for (size_t i = 0; i <= expected.size(); ++i) {
            SCOPED_TRACE(testing::Message() << "case " << &test - cases << ", request " << i);
            Owned created;
            const auto work = [&, &make = create] { created = Owned(make()); };
            const bool isSilent = i == expected.size() || expected[i].empty();
            EXPECT_EQ(linesWithout(i + 1, work), isSilent ? Lines{} : Lines{expected[i]});
            EXPECT_EQ(static_cast<bool>(created), i == expected.size());
        }
    }
}

TEST_F(AllocationTest, PoolIsNullOrWholeAndReleasesWhatItCannotHold) {
    std::thread([] {
        bool hasFailed = true;
        for (size_t number = 1; hasFailed; ++number) {
            Owned pool;
            const auto open = [&] { pool = Owned(OrvTemporaryObjectsPoolCreate()); };
            EXPECT_EQ(linesWithout(number, open, &hasFailed), Lines{}) << number;
            EXPECT_EQ(static_cast<bool>(pool), !hasFailed) << number;
            EXPECT_EQ(OrvGetCurrentTemporaryObjectsPool(), pool.get()) << number;
        }
    }).join();
    const Owned pool(OrvTemporaryObjectsPoolCreate());
    const Owned string = makeText(L"a");
    OrvRetain(string.get());
    linesWithout(1, [&] { EXPECT_FALSE(OrvTemporaryObjectsPoolAddObject(string.get())); });
    EXPECT_EQ(OrvGetRetainCount(string.get()), 1U);
}

TEST_F(AllocationTest, ContainersAndStringsStayWhole) {
    const Owned object = makeText(L"a"), other = makeText(L"b"), addition = makeText(longText);
    const Owned array(OrvArrayCreate(1));
    OrvArrayAddObject(array.get(), object.get());
    const Owned dictionary(OrvDictionaryCreate());
    OrvDictionarySetValue(dictionary.get(), object.get(), L"key");
    const std::pair<std::string, std::function<void()>> changes[] = {
        {addLine, [&] { OrvArrayAddObject(array.get(), object.get()); }},
        {"Failed inserting the object.",
         [&] { OrvArrayInsertObjectAtIndex(array.get(), object.get(), 0); }},
        {setLine, [&] { OrvDictionarySetValue(dictionary.get(), other.get(), L"key"); }}};
    for (const auto& [line, change] : changes)
        EXPECT_EQ(linesWithout(1, change), Lines{line});
    EXPECT_EQ(OrvArrayGetCount(array.get()), 1U);
    EXPECT_EQ(OrvDictionaryGetValue(dictionary.get(), L"key"), nullptr);
    EXPECT_EQ(OrvGetRetainCount(object.get()), 2U); // here and in the array
    EXPECT_EQ(OrvGetRetainCount(other.get()), 1U);

    const Owned string = makeText(L"line\nline\nline and more\n");
    const std::wstring before = stringOf(string.get());
    const std::function<void(OrvIBase*)> silent[] = {
        [&](OrvIBase* s) { OrvStringAppend(s, addition.get()); },
        [&](OrvIBase* s) { OrvStringReplaceCharacters(s, addition.get(), 1, 1); },
        [&](OrvIBase* s) { OrvStringConvertLineBreaks(s, 1, 3); },
        [&](OrvIBase* s) { EXPECT_EQ(OrvStringCopyNSString(s), std::nullopt); },
        [&](OrvIBase* s) { EXPECT_EQ(OrvCopyCocoaObject(s), std::nullopt); },
    };
    for (const auto& change : silent) {
        EXPECT_EQ(linesWithout(1, [&] { change(string.get()); }), Lines{});
        EXPECT_EQ(stringOf(string.get()), before) << "change " << &change - silent;
    }
}

} // namespace zelmora::test
