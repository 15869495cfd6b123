// Arrays and dictionaries.
#include "foundation_fixture.h"

#include <functional>

namespace zelmora::test {

namespace {

class CollectionsTest : public FoundationTest {};

Owned makeArray(std::initializer_list<std::wstring_view> texts) {
    Owned array(OrvArrayCreate(0));
    for (const std::wstring_view text : texts)
        OrvArrayAddObject(array.get(), makeText(text).get());
    return array;
}

/// The strings of an array with a comma after each.
std::wstring joined(const OrvIBase* array) {
    std::wstring all;
    for (uint64_t i = 0; i < OrvArrayGetCount(array); ++i)
        all += stringOf(OrvArrayGetObjectAtIndex(array, i)) + L",";
    return all;
}

} // namespace

TEST_F(CollectionsTest, ArrayOwnsItsElementsAndChanges) {
    const Owned x = makeText(L"x");
    Owned array = makeArray({L"a", L"b", L"c"});
    OrvIBase* const elements = array.get();
    const std::pair<std::wstring, std::function<void()>> steps[] = {
        {L"x,a,b,c,", [&] { OrvArrayInsertObjectAtIndex(elements, x.get(), 0); }},
        {L"x,a,b,c,x,", [&] { OrvArrayInsertObjectAtIndex(elements, x.get(), 4); }},
        {L"a,b,c,x,", [&] { OrvArrayRemoveObject(elements, x.get()); }},
        {L"a,c,x,", [&] { OrvArrayRemoveObjectAtIndex(elements, 1); }},
        {L"a,c,x,", [&] { OrvArrayRemoveObjectAtIndex(elements, 3); }},
        {L"a,x,x,", [&] { OrvArrayReplaceObjectAtIndex(elements, x.get(), 1); }},
        {L"a,x,x,", [&] { OrvArrayReplaceObjectAtIndex(elements, x.get(), 3); }},
        {L"a,x,x,", [&] { linesOf([&] { OrvArrayAddObject(elements, nullptr); }); }},
    };
    for (const auto& [expected, step] : steps) {
        step();
        EXPECT_EQ(joined(elements), expected);
    }
    EXPECT_EQ(OrvArrayGetObjectAtIndex(elements, 3), nullptr);
    EXPECT_EQ(OrvGetRetainCount(x.get()), 3U);
    array = {};
    EXPECT_EQ(OrvGetRetainCount(x.get()), 1U);
}

TEST_F(CollectionsTest, DictionaryOwnsItsValues) {
    const Owned dictionary(OrvDictionaryCreate());
    const Owned first = makeText(L"1"), second = makeText(L"2");
    OrvDictionarySetValue(dictionary.get(), first.get(), L"key");
    OrvDictionarySetValue(dictionary.get(), first.get(), L"key");
    EXPECT_EQ(OrvGetRetainCount(first.get()), 2U);
    OrvDictionarySetValue(dictionary.get(), second.get(), L"key");
    EXPECT_EQ(OrvGetRetainCount(first.get()), 1U);
    EXPECT_EQ(OrvDictionaryGetValue(dictionary.get(), L"key"), second.get());
    EXPECT_EQ(OrvDictionaryGetValue(dictionary.get(), L"ke"), nullptr);
    OrvDictionaryRemoveValue(dictionary.get(), L"other");
    OrvDictionaryRemoveValue(dictionary.get(), L"key");
    EXPECT_EQ(OrvGetRetainCount(second.get()), 1U);
}

// The old value goes last: it may be the only owner of the new one, or of the key's characters.
TEST_F(CollectionsTest, DictionaryReplacesAValueByAPartOfIt) {
    const Owned dictionary(OrvDictionaryCreate());
    OrvDictionarySetValue(dictionary.get(), makeArray({L"part"}).get(), L"key");
    OrvIBase* part = OrvArrayGetObjectAtIndex(OrvDictionaryGetValue(dictionary.get(), L"key"), 0);
    OrvDictionarySetValue(dictionary.get(), part, L"key");
    EXPECT_EQ(stringOf(OrvDictionaryGetValue(dictionary.get(), L"key")), L"part");
    OrvDictionarySetValue(dictionary.get(), part, L"part");
    OrvDictionarySetValue(dictionary.get(), makeText(L"new").get(), OrvStringGetCharacters(part));
    EXPECT_EQ(stringOf(OrvDictionaryGetValue(dictionary.get(), L"part")), L"new");
}

} // namespace zelmora::test
