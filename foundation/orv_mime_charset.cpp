// The MIME charset names of the encodings, in a table of the shared-object registry.
#include "foundation/orv_dictionary_impl.h"
#include "foundation/orv_library_impl.h"
#include "foundation/orv_string.h"

#include <array>
#include <cwchar>

namespace zelmora {

namespace {

constexpr const wchar_t* tableKey = L"org.zelmora.OrvFoundation.MIMECharSetName";
constexpr const wchar_t* noOrder = L"";
constexpr const wchar_t* littleEndian = L"-LE";
constexpr const wchar_t* bigEndian = L"-BE";

/// IANA's preferred MIME names. UTF-16 and UTF-32 have no row without a byte order.
struct Row {
    int32_t encoding;
    const wchar_t* byteOrder;
    const wchar_t* name;
};

constexpr Row rows[] = {
    {1, noOrder, L"Shift_JIS"},  {2, noOrder, L"ISO-2022-JP"},   {3, noOrder, L"EUC-JP"},
    {4, noOrder, L"UTF-8"},      {5, bigEndian, L"UTF-16BE"},    {5, littleEndian, L"UTF-16LE"},
    {6, bigEndian, L"UTF-32BE"}, {6, littleEndian, L"UTF-32LE"},
};

/// A row's key in the table: the encoding in hexadecimal and the byte order, "0005-LE".
using Key = std::array<wchar_t, 64>;

Key rowKey(int32_t encoding, const wchar_t* byteOrder) {
    Key key = {};
    std::swprintf(key.data(), key.size(), L"%04X%ls", static_cast<unsigned>(encoding), byteOrder);
    return key;
}

/// The table, registered; null, and nothing registered, when it could not be built whole.
OrvDictionaryImpl* buildTable(OrvDictionaryImpl& registry) noexcept {
    auto table = OrvDictionaryImpl::create();
    if (!table)
        return nullptr;
    for (const Row& row : rows) {
        // Null without memory, which the table refuses and reports.
        OrvIBase* name = OrvTemporaryString(row.name);
        if (!table->setValue(name, rowKey(row.encoding, row.byteOrder).data()))
            return nullptr;
    }
    return registry.setValue(table.get(), tableKey) ? table.get() : nullptr;
}

} // namespace

OrvIBase* OrvMIMECharSetName(int32_t encoding, int32_t byteOrder) noexcept {
    OrvDictionaryImpl* registry = sharedObjectRegistry();
    if (!registry)
        return nullptr;
    auto* table = objectCast<OrvDictionaryImpl>(registry->value(tableKey));
    if (!table)
        table = buildTable(*registry);
    if (!table)
        return nullptr;
    const wchar_t* suffix = byteOrder == 1 ? littleEndian : byteOrder == 2 ? bigEndian : noOrder;
    OrvIBase* nameWithOrder = table->value(rowKey(encoding, suffix).data());
    return nameWithOrder ? nameWithOrder : table->value(rowKey(encoding, noOrder).data());
}

} // namespace zelmora
