// XML property lists through libplist, whose reader is forgiving: it takes "12abc" for 12 and
// numbers too large for the nearest that fits, drops a key without a value, takes the first of two
// lists and ignores what follows the last one, and frees deep lists recursively. A settings file
// read wrongly would be saved wrongly, so the source is scanned for all of that first.
#include "platform/defaults/property_list.h"

#include "platform/text/text_encoding.h"
#include "platform/text/utf8.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <plist/plist.h>

namespace zelmora::platform {

namespace {

// Far above any settings file, and low enough that libplist's recursion stays on the stack.
constexpr size_t kMaxSourceSize = 16 << 20;
constexpr size_t kMaxContainers = 10000;
constexpr int kMaxDepth = 64;

struct NodeRelease {
    void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, NodeRelease>;

struct XMLRelease {
    void operator()(char* xml) const { plist_to_xml_free(xml); }
};

std::string_view withoutOuterSpace(std::string_view text) {
    constexpr std::string_view kSpace = " \t\r\n";
    const size_t first = text.find_first_not_of(kSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

/// The number that all of `text` writes in decimal, with or without a sign.
template<typename Number>
std::optional<Number> numberFromDecimal(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    const char* const textEnd = text.data() + text.size();
    Number number{};
    const auto [end, code] = std::from_chars(text.data(), textEnd, number);
    return code == std::errc{} && end == textEnd ? std::optional(number) : std::nullopt;
}

bool isInteger(std::string_view text) {
    return integerFromDecimal(text).has_value();
}

bool isReal(std::string_view text) {
    const auto number = numberFromDecimal<double>(text);
    return number && std::isfinite(*number);
}

/// One pass over the source for what libplist would read wrongly.
class SourceScan {
  public:
    explicit SourceScan(std::string_view source) : _source(source) {}

    /// What is wrong with the source; null when it can be handed to libplist.
    const char* fault() {
        if (_source.size() > kMaxSourceSize || _source.find('\0') != std::string_view::npos)
            return "not an XML property list";
        constexpr std::string_view kEnd = "</plist>";
        const std::string_view trimmed = withoutOuterSpace(_source);
        if (!trimmed.ends_with(kEnd) || trimmed.find(kEnd) != trimmed.size() - kEnd.size())
            return "cut off, or more than one property list";
        while ((_position = _source.find('<', _position)) != std::string_view::npos) {
            if (const char* fault = faultOfTag(_source.substr(_position)))
                return fault;
            ++_position;
        }
        return nullptr;
    }

    /// The number of keys seen, which is the number of entries that reading must yield.
    [[nodiscard]] size_t keyCount() const { return _keyCount; }

  private:
    const char* faultOfTag(std::string_view rest) {
        if (rest.starts_with("<!--")) {
            _position = _source.find("-->", _position + 4);
            return _position == std::string_view::npos ? "a comment without an end" : nullptr;
        }
        if (rest.starts_with("<![CDATA["))
            return "a CDATA section, which settings files do not use";
        if (rest.starts_with("<key"))
            ++_keyCount;
        if ((rest.starts_with("<dict") || rest.starts_with("<array")) &&
            ++_containerCount > kMaxContainers)
            return "too many arrays and dictionaries";
        if (rest.starts_with("<integer") &&
            !holdsNumber(rest, "<integer>", "</integer>", isInteger))
            return "an integer that is no decimal number of 64 bits";
        if (rest.starts_with("<real") && !holdsNumber(rest, "<real>", "</real>", isReal))
            return "a real that is no decimal number";
        return nullptr;
    }

    static bool holdsNumber(std::string_view rest, std::string_view open, std::string_view close,
                            bool (*isNumber)(std::string_view)) {
        if (!rest.starts_with(open))
            return false;
        rest.remove_prefix(open.size());
        const size_t end = rest.find('<');
        return end != std::string_view::npos && rest.substr(end).starts_with(close) &&
               isNumber(withoutOuterSpace(rest.substr(0, end)));
    }

    std::string_view _source;
    size_t _position = 0;
    size_t _keyCount = 0;
    size_t _containerCount = 0;
};

/// Turns libplist's tree into values.
class Reader {
  public:
    /// Reads `node` into `value`; false, with fault() set, when it is of a type not held here.
    bool read(plist_t node, int depth, PropertyListValue& value) {
        if (depth > kMaxDepth)
            return fail("nested too deeply");
        switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            uint8_t boolean = 0;
            plist_get_bool_val(node, &boolean);
            value = boolean != 0;
            return true;
        }
        case PLIST_UINT: {
            // libplist holds negative numbers in two's complement.
            uint64_t integer = 0;
            plist_get_uint_val(node, &integer);
            value = static_cast<int64_t>(integer);
            return true;
        }
        case PLIST_REAL: {
            double real = 0;
            plist_get_real_val(node, &real);
            value = real;
            return true;
        }
        case PLIST_DATA: {
            uint64_t length = 0;
            const char* data = plist_get_data_ptr(node, &length);
            const ByteView bytes = bytesOf({data, length});
            value = Bytes(bytes.begin(), bytes.end());
            return true;
        }
        case PLIST_STRING:
            return readString(node, value);
        case PLIST_ARRAY:
            return readArray(node, depth, value);
        case PLIST_DICT:
            return readDictionary(node, depth, value);
        default:
            return fail("a value of a type that settings do not have");
        }
    }

    [[nodiscard]] const char* fault() const { return _fault; }
    /// The number of entries read, of all dictionaries together.
    [[nodiscard]] size_t entryCount() const { return _entryCount; }

  private:
    bool fail(const char* fault) {
        _fault = fault;
        return false;
    }

    bool readString(plist_t node, PropertyListValue& value) {
        uint64_t length = 0;
        const char* chars = plist_get_string_ptr(node, &length);
        std::string text(chars, length);
        if (!isPropertyListText(text))
            return fail("a string that is not UTF-8 text");
        value = std::move(text);
        return true;
    }

    bool readArray(plist_t node, int depth, PropertyListValue& value) {
        PropertyListArray items(plist_array_get_size(node));
        plist_array_iter iterator = nullptr;
        plist_array_new_iter(node, &iterator);
        const std::unique_ptr<void, decltype(&free)> iteratorOwner(iterator, &free);
        for (PropertyListValue& itemValue : items) {
            plist_t item = nullptr;
            plist_array_next_item(node, iterator, &item);
            if (!read(item, depth + 1, itemValue))
                return false;
        }
        value = std::move(items);
        return true;
    }

    bool readDictionary(plist_t node, int depth, PropertyListValue& value) {
        PropertyListDictionary entries;
        plist_dict_iter iterator = nullptr;
        plist_dict_new_iter(node, &iterator);
        const std::unique_ptr<void, decltype(&free)> iteratorOwner(iterator, &free);
        for (uint32_t i = plist_dict_get_size(node); i > 0; --i) {
            char* rawKey = nullptr;
            plist_t item = nullptr;
            plist_dict_next_item(node, iterator, &rawKey, &item);
            const std::unique_ptr<char, decltype(&free)> key(rawKey, &free);
            if (!isPropertyListText(key.get()))
                return fail("a key that is not UTF-8 text");
            if (!read(item, depth + 1, entries[key.get()]))
                return false;
            ++_entryCount;
        }
        value = std::move(entries);
        return true;
    }

    const char* _fault = "";
    size_t _entryCount = 0;
};

/// Makes libplist's node of a value; every form of Content has its operator. Null, with `fault`
/// set, when XML cannot hold the value.
class Writer {
  public:
    Node operator()(bool value) { return Node(plist_new_bool(value)); }
    Node operator()(int64_t value) { return Node(plist_new_uint(static_cast<uint64_t>(value))); }
    Node operator()(double value) {
        if (!std::isfinite(value))
            return fail("a number without a decimal form");
        return Node(plist_new_real(value));
    }
    Node operator()(const std::string& value) {
        if (!isPropertyListText(value))
            return fail(displayPath(value) + ": characters that a property list cannot hold");
        return Node(plist_new_string(value.c_str()));
    }
    Node operator()(const Bytes& value) {
        return Node(plist_new_data(charsOf(value).data(), value.size()));
    }
    Node operator()(const PropertyListArray& values) {
        Node array(plist_new_array());
        for (const auto& value : values) {
            Node item = std::visit(*this, value.content());
            if (!item)
                return nullptr;
            plist_array_append_item(array.get(), item.release());
        }
        return array;
    }
    Node operator()(const PropertyListDictionary& values) {
        Node dictionary(plist_new_dict());
        for (const auto& [key, value] : values) {
            Node item = std::visit(*this, value.content());
            if (!item)
                return nullptr;
            if (!isPropertyListText(key))
                return fail(displayPath(key) + ": characters that a key cannot hold");
            plist_dict_set_item(dictionary.get(), key.c_str(), item.release());
        }
        return dictionary;
    }

    [[nodiscard]] const std::string& fault() const { return _fault; }

  private:
    Node fail(std::string fault) {
        _fault = std::move(fault);
        return nullptr;
    }

    std::string _fault;
};

} // namespace

bool isPropertyListText(std::string_view text) {
    const auto decoded = decodeText(bytesOf(text), TextEncoding::utf8);
    return decoded && std::ranges::none_of(*decoded, [](char16_t unit) {
               const bool isSpace = unit == u'\t' || unit == u'\n' || unit == u'\r';
               return (unit < 0x20 && !isSpace) || unit == 0xFFFE || unit == 0xFFFF;
           });
}

std::optional<int64_t> integerFromDecimal(std::string_view text) {
    return numberFromDecimal<int64_t>(text);
}

Result<PropertyListValue> propertyListFromXML(std::string_view xml, std::string_view name) {
    const auto invalid = [&](const char* fault) {
        return Error{EINVAL, std::string(name) + ": " + fault};
    };
    SourceScan scan(xml);
    if (const char* fault = scan.fault())
        return invalid(fault);
    plist_t parsed = nullptr;
    plist_from_xml(xml.data(), static_cast<uint32_t>(xml.size()), &parsed);
    const Node root(parsed);
    if (!root)
        return invalid("not an XML property list");
    Reader reader;
    PropertyListValue value;
    if (!reader.read(root.get(), 0, value))
        return invalid(reader.fault());
    if (reader.entryCount() != scan.keyCount())
        return invalid("a key that stands twice or has no value");
    return value;
}

Result<std::string> xmlFromPropertyList(const PropertyListValue& value) {
    Writer writer;
    const Node root = std::visit(writer, value.content());
    if (!root)
        return Error{EILSEQ, writer.fault()};
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(root.get(), &xml, &length);
    const std::unique_ptr<char, XMLRelease> xmlOwner(xml);
    return std::string(xml, length);
}

} // namespace zelmora::platform
