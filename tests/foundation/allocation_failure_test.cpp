// When memory runs out, at whatever request: no exception, no leak, and no text half changed.
// The address sanitizer adds its own account of leaks.
#include "foundation_fixture.h"

#include "foundation/orv_css.h"

#include <cstdlib>
#include <functional>
#include <new>

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

constexpr const wchar_t* longText = L"longer than a string holds without the heap";

class AllocationTest : public FoundationTest {};

/// Runs `work`, whose `number`th allocation fails; whether it made so many. What it says about that
/// is not shown.
template<typename Work>
bool failsWithin(int number, Work&& work) {
    bool hasFailed = false;
    linesOf([&] {
        allocationsToFailure = number;
        work();
        hasFailed = allocationsToFailure < 0;
        allocationsToFailure = 0;
    });
    return hasFailed;
}

/// What the application does with a style sheet, from start to end. Answers whether it all worked.
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
            isComplete = made && OrvStringCopyNSString(text) ==
                                     u"a{b:c}@charset \"UTF-32LE\";\r\n"
                                     u"longer than a string holds without the heap";
        }
    }
    OrvFoundationTerminate();
    return isComplete;
}

} // namespace

TEST(AllocationScriptTest, AnyRequestOfAScriptMayFail) {
    int number = 0;
    for (bool hasFailed = true; hasFailed;) {
        bool isComplete = false;
        hasFailed = failsWithin(++number, [&] { isComplete = runScript(); });
        ASSERT_EQ(OrvLiveObjectCount(), 0) << "request " << number;
        EXPECT_TRUE(hasFailed || isComplete);
    }
    EXPECT_GT(number, 60);
}

TEST_F(AllocationTest, StringsStayWhole) {
    const Owned addition = makeText(longText), string = makeText(L"line\nline\nline and more\n");
    const std::wstring before = stringOf(string.get());
    const std::function<void(OrvIBase*)> changes[] = {
        [&](OrvIBase* s) { OrvStringAppend(s, addition.get()); },
        [&](OrvIBase* s) { OrvStringReplaceCharacters(s, addition.get(), 1, 1); },
        [&](OrvIBase* s) { OrvStringConvertLineBreaks(s, 1, 3); },
        [&](OrvIBase* s) { EXPECT_EQ(OrvStringCopyNSString(s), std::nullopt); },
    };
    for (const auto& change : changes) {
        EXPECT_TRUE(failsWithin(1, [&] { change(string.get()); }));
        EXPECT_EQ(stringOf(string.get()), before) << "change " << &change - changes;
    }
}

} // namespace zelmora::test
