// Arrays, enumerators, dictionaries, numbers and data.
#include "foundation_fixture.h"

#include "foundation/orv_array_impl.h"
#include "foundation/orv_values.h"

#include <cmath>
#include <functional>
#include <limits>

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

TEST_F(CollectionsTest, ArrayOwnsItsElements) {
    const Owned object = makeText(L"a");
    Owned array(OrvArrayCreate(2));
    EXPECT_EQ(OrvGetTypeID(array.get()), 6U);
    OrvArrayAddObject(array.get(), object.get());
    EXPECT_EQ(OrvGetRetainCount(object.get()), 2U);
    EXPECT_EQ(OrvArrayGetObjectAtIndex(array.get(), 0), object.get());
    EXPECT_EQ(OrvArrayGetObjectAtIndex(array.get(), 1), nullptr);
    EXPECT_EQ(linesOf([&] { OrvArrayAddObject(array.get(), nullptr); }),
              Lines{"Add NULL object into the array."});
    EXPECT_EQ(OrvArrayGetCount(array.get()), 1U);
    array = {};
    EXPECT_EQ(OrvGetRetainCount(object.get()), 1U);
    EXPECT_EQ(linesOf([] { EXPECT_EQ(OrvArrayCreate(UINT64_MAX), nullptr); }),
              Lines{"Couldn't allocate the instance of the OrvArray. (capacity=-1)"});
}

TEST_F(CollectionsTest, ArrayChanges) {
    const Owned array = makeArray({L"a", L"b", L"c"});
    const Owned x = makeText(L"x");
    OrvIBase* const elements = array.get();
    const std::tuple<std::wstring, std::function<void()>> steps[] = {
        {L"x,a,b,c,", [&] { OrvArrayInsertObjectAtIndex(elements, x.get(), 0); }},
        {L"x,a,b,c,x,", [&] { OrvArrayInsertObjectAtIndex(elements, x.get(), 4); }},
        {L"a,b,c,x,", [&] { OrvArrayRemoveObject(elements, x.get()); }},
        {L"a,c,x,", [&] { OrvArrayRemoveObjectAtIndex(elements, 1); }},
        {L"a,c,x,", [&] { OrvArrayRemoveObjectAtIndex(elements, 3); }},
        {L"a,x,x,", [&] { OrvArrayReplaceObjectAtIndex(elements, x.get(), 1); }},
        {L"a,x,x,", [&] { OrvArrayReplaceObjectAtIndex(elements, x.get(), 3); }},
        {L"a,x,x,", [&] { OrvArrayRemoveObject(elements, makeText(L"x").get()); }},
        {L"", [&] { OrvArrayRemoveAllObjects(elements); }},
    };
    for (const auto& [expected, step] : steps) {
        step();
        EXPECT_EQ(joined(elements), expected);
    }
    EXPECT_EQ(OrvGetRetainCount(x.get()), 1U);
    EXPECT_EQ(linesOf([&] { OrvArrayInsertObjectAtIndex(elements, x.get(), 1); }),
              Lines{"The index(1) is out of range."});
    OrvIBase* const objects[] = {x.get(), x.get()};
    const Owned both(OrvArrayCreateWithObjects(objects, 2));
    EXPECT_EQ(joined(both.get()), L"x,x,");
}

TEST_F(CollectionsTest, EnumeratorKeepsItsArray) {
    const int64_t before = OrvLiveObjectCount();
    Owned enumerator(OrvArrayCreateEnumerator(makeArray({L"a", L"b"}).get()));
    EXPECT_EQ(OrvGetTypeID(enumerator.get()), 2U);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(stringOf(OrvEnumeratorGetNextObject(enumerator.get())), L"a");
        EXPECT_EQ(stringOf(OrvEnumeratorGetNextObject(enumerator.get())), L"b");
        EXPECT_EQ(OrvEnumeratorGetNextObject(enumerator.get()), nullptr);
        EXPECT_EQ(OrvEnumeratorGetNextObject(enumerator.get()), nullptr);
        objectCast<OrvEnumeratorImpl>(enumerator.get())->Reset();
    }
    enumerator = {};
    EXPECT_EQ(OrvLiveObjectCount(), before);
}

TEST_F(CollectionsTest, DictionaryOwnsItsValues) {
    const Owned dictionary(OrvDictionaryCreate());
    EXPECT_EQ(OrvGetTypeID(dictionary.get()), 14U);
    const Owned first = makeText(L"1");
    const Owned second = makeText(L"2");
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

    const Lines lines = linesOf([&] {
        OrvDictionarySetValue(dictionary.get(), nullptr, L"key");
        OrvDictionarySetValue(dictionary.get(), nullptr, nullptr);
        OrvDictionarySetValue(dictionary.get(), first.get(), nullptr);
    });
    EXPECT_EQ(lines, (Lines{"Attempt to insert NULL value into the dictionary.",
                            "Attempt to insert NULL value into the dictionary.",
                            "Attempt to insert the value with NULL key."}));
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

    const PropertyListValue list(PropertyListArray{std::string("é"), std::string(), int64_t{-3}});
    EXPECT_EQ(OrvCopyCocoaObject(array.get()), list);
    const PropertyListDictionary entries = {{"k𠮷", std::string("v")}, {"list", list}};
    EXPECT_EQ(OrvCopyCFType(dictionary.get()), PropertyListValue(entries));
    EXPECT_EQ(OrvCopyCocoaObject(OrvGetCurrentTemporaryObjectsPool()), std::nullopt);
}

TEST_F(CollectionsTest, NumbersConvertAsC) {
    const auto check = [](Owned number, bool asBool, int asInt, unsigned char asByte,
                          unsigned long long asUnsigned, double asDouble) {
        EXPECT_EQ(OrvGetTypeID(number.get()), 1U);
        EXPECT_EQ(OrvNumberGetBool(number.get()), asBool) << asDouble;
        EXPECT_EQ(OrvNumberGetInt(number.get()), asInt) << asDouble;
        EXPECT_EQ(OrvNumberGetUnsignedChar(number.get()), asByte) << asDouble;
        EXPECT_EQ(OrvNumberGetUnsignedLongLong(number.get()), asUnsigned) << asDouble;
        EXPECT_EQ(OrvNumberGetDouble(number.get()), asDouble);
    };
    check(Owned(OrvNumberCreateWithBool(true)), true, 1, 1, 1, 1.0);
    check(Owned(OrvNumberCreateWithShort(-2)), true, -2, 254, UINT64_MAX - 1, -2.0);
    check(Owned(OrvNumberCreateWithUnsignedInt(0x101)), true, 257, 1, 257, 257.0);
    check(Owned(OrvNumberCreateWithDouble(0.5)), true, 0, 0, 0, 0.5);
    check(Owned(OrvNumberCreateWithFloat(-1.5F)), true, -1, 0, 0, -1.5);
    check(Owned(OrvNumberCreateWithDouble(1e30)), true, INT_MAX, 255, UINT64_MAX, 1e30);
    EXPECT_EQ(OrvNumberGetLongLong(Owned(OrvNumberCreateWithDouble(NAN)).get()), 0);
    EXPECT_EQ(OrvNumberGetFloat(makeText(L"1").get()), 0.0F);

    const Owned huge(OrvNumberCreateWithUnsignedLongLong(UINT64_MAX));
    EXPECT_EQ(OrvCopyCocoaObject(huge.get()), PropertyListValue(0x1p64));
    const Owned yes(OrvNumberCreateWithBool(true));
    EXPECT_EQ(OrvCopyCocoaObject(yes.get()), PropertyListValue(true));
}

TEST_F(CollectionsTest, DataKeepsItsBytes) {
    const auto view = platform::bytesOf({"ab\0c", 4});
    const Owned data(OrvDataCreate(view.data(), view.size()));
    EXPECT_EQ(OrvGetTypeID(data.get()), 4U);
    EXPECT_EQ(OrvDataGetSize(data.get()), 4U);
    EXPECT_NE(OrvDataGetBytes(data.get()), view.data());
    EXPECT_EQ(OrvCopyCocoaObject(data.get()),
              PropertyListValue(platform::Bytes(view.begin(), view.end())));
    EXPECT_EQ(OrvDataGetSize(Owned(OrvDataCreate(nullptr, 0)).get()), 0U);
}

} // namespace zelmora::test
