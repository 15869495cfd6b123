// Arrays and dictionaries.
#include "foundation_fixture.h"

#include "foundation/orv_values.h"

#include <functional>

namespace zelmora::test {

namespace {

using platform::PropertyListArray;
using platform::PropertyListDictionary;
using platform::PropertyListValue;

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

Owned withEntries(std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> entries) {
    Owned dictionary(OrvDictionaryCreate());
    for (const auto& [key, value] : entries)
        OrvDictionarySetValue(dictionary.get(), makeText(value).get(), key);
    return dictionary;
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

TEST_F(CollectionsTest, DictionaryOrdersItsKeys) {
    const Owned dictionary = withEntries(
        {{L"b", L"1"}, {L"abc", L"2"}, {L"ab", L"3"}, {L"\U00010000", L"4"}, {L"\uFFFF", L"5"}});
    OrvDictionaryAddEntries(dictionary.get(), withEntries({{L"b", L"6"}, {L"", L"7"}}).get());
    const Owned keys(OrvDictionaryCreateKeys(dictionary.get()));
    EXPECT_EQ(joined(keys.get()), L",ab,abc,b,\uFFFF,\U00010000,");
    const Owned values(OrvDictionaryCreateValues(dictionary.get()));
    EXPECT_EQ(joined(values.get()), L"7,3,2,6,5,4,");
}

TEST_F(CollectionsTest, ContainersCopyToPlatformObjects) {
    const Owned array = makeArray({L"é"});
    OrvArrayAddObject(array.get(), OrvGetSharedObject(L"org.zelmora.OrvFoundation.Null"));
    OrvArrayAddObject(array.get(), Owned(OrvNumberCreateWithInt(-3)).get());
    const Owned dictionary = withEntries({{L"k𠮷", L"v"}});
    OrvDictionarySetValue(dictionary.get(), array.get(), L"list");
    const auto view = platform::bytesOf({"ab\0c", 4});
    OrvArrayAddObject(array.get(), Owned(OrvDataCreate(view.data(), view.size())).get());
    const PropertyListValue list(
        PropertyListArray{"é", "", -3, platform::Bytes(view.begin(), view.end())});
    EXPECT_EQ(OrvCopyCocoaObject(array.get()), list);
    const PropertyListDictionary entries = {{"k𠮷", std::string("v")}, {"list", list}};
    EXPECT_EQ(OrvCopyCFType(dictionary.get()), PropertyListValue(entries));
    EXPECT_EQ(OrvCopyCocoaObject(OrvGetCurrentTemporaryObjectsPool()), std::nullopt);
}

} // namespace zelmora::test
