// Charset declarations in HTML, XML and CSS, made to name the encoding that the text gets.

#include "engine/document_controller.h"

#include "engine/settings.h"
#include "foundation/orv_css.h"
#include "foundation/orv_ptr.h"
#include "foundation/orv_string.h"
#include "markup/html_parser.h"

namespace zelmora {

using settings::codeForKey;

namespace {

/// Where a tag that the parser found ends: the offset behind its ">".
size_t endOffset(const OrvMarkupTag& tag) {
    const auto& notes = *tag.parserAdditional();
    return std::get<size_t>(notes.find(OrvHTMLParserAdditionalKeyOffset)->second) +
           std::get<std::u16string>(notes.find(OrvHTMLParserAdditionalKeyString)->second).size();
}

/// The offset, in UTF-16 units, of the `count`-th character (a surrogate pair being one) behind
/// `offset`. The style-sheet reader counts characters, the text is edited by units.
size_t unitOffset(std::u16string_view text, size_t offset, int32_t count) {
    for (; count > 0 && offset < text.size(); --count) {
        const bool isPair = text[offset] >= 0xD800 && text[offset] < 0xDC00 &&
                            offset + 1 < text.size() && text[offset + 1] >= 0xDC00 &&
                            text[offset + 1] < 0xE000;
        offset += isPair ? 2 : 1;
    }
    return offset;
}

/// The text of `element`, with `suffix`, its line feeds as `lineBreak`; nullopt when it has none.
std::optional<std::u16string> renderedText(const OrvIBase* element, const wchar_t* suffix,
                                           OrvLineBreak lineBreak) {
    OrvIBase* text = OrvCSSElementGetText(element);
    if (text == nullptr)
        return std::nullopt;
    OrvStringAppend(text, OrvTemporaryString(suffix));
    if (lineBreak != OrvLineBreak::none)
        OrvStringConvertLineBreaks(text, static_cast<int32_t>(OrvLineBreak::lf),
                                   static_cast<int32_t>(lineBreak));
    return OrvStringCopyNSString(text);
}

} // namespace

OrvEncodingInfo
ZelDocumentController::declarationEncodingInfo(OrvEncodingInfo srcEncodingInfo) const {
    // Byte order and mark come from the settings also when the encoding is kept.
    auto info = encodingInfoOfSettings();
    if (info.encoding == OrvEncoding::none)
        info.encoding = srcEncodingInfo.encoding;
    return info;
}

void ZelDocumentController::doConvertProcessMETAElement(std::u16string& text,
                                                        OrvEncodingInfo srcEncodingInfo) const {
    const bool replaces = _services.defaults.boolForKey(settings::replaceMETA);
    const bool inserts = _services.defaults.boolForKey(settings::exportMETA);
    if (!replaces && !inserts)
        return;
    OrvHTMLParser parser;
    parser.setMutableHTMLString(text);
    const auto info = declarationEncodingInfo(srcEncodingInfo);
    if (info.encoding == OrvEncoding::none)
        return;
    const auto tag = OrvHTMLParser::newEncodingSpecifierTagWithEncodingInfo(info);
    if (!tag)
        return;
    if (const auto found = parser.findEncodingSpecifier()) {
        if (replaces)
            parser.replaceMarkupTag(*found, *tag);
    } else if (inserts) {
        if (const auto head = parser.findMarkupTagName(u"head", 0))
            parser.insertMarkupTag(*tag, endOffset(*head));
    }
}

void ZelDocumentController::doConvertProcessXMLProcInstruction(
    std::u16string& text, OrvEncodingInfo srcEncodingInfo) const {
    if (!_services.defaults.boolForKey(settings::replaceXMLProc))
        return;
    OrvHTMLParser parser;
    parser.setMutableHTMLString(text);
    const auto found = parser.findXMLProcInstTag();
    const auto info = declarationEncodingInfo(srcEncodingInfo);
    if (!found || info.encoding == OrvEncoding::none)
        return;
    if (const auto tag = OrvHTMLParser::newXMLProcInstTagWithEncodingInfo(info))
        parser.replaceMarkupTag(*found, *tag);
}

void ZelDocumentController::doConvertProcessLinkElement(std::u16string& text,
                                                        OrvEncodingInfo srcEncodingInfo) const {
    if (!_services.defaults.boolForKey(settings::replaceLink) ||
        declarationEncodingInfo(srcEncodingInfo).encoding == OrvEncoding::none)
        return;
    OrvHTMLParser parser;
    parser.setMutableHTMLString(text);
    for (auto link = parser.findMarkupTagName(u"link", 0); link;
         link = parser.findMarkupTagName(u"link", endOffset(*link))) {
    }
}

void ZelDocumentController::doConvertProcessCSSElement(std::u16string& text,
                                                       OrvEncodingInfo srcEncodingInfo,
                                                       OrvLineBreak srcLineBreak) const {
    const auto& defaults = _services.defaults;
    const bool replaces = defaults.boolForKey(settings::replaceCSSCharSet);
    const bool inserts = defaults.boolForKey(settings::exportCSSCharSet);
    const auto target = targetEncodingInfo(srcEncodingInfo);
    if ((!replaces && !inserts) || target.encoding == OrvEncoding::none)
        return;
    auto lineBreak = static_cast<OrvLineBreak>(codeForKey(defaults, settings::lineBreakCode));
    if (lineBreak == OrvLineBreak::none)
        lineBreak = srcLineBreak;

    const auto encoding = static_cast<int32_t>(target.encoding);
    const auto byteOrder = static_cast<int32_t>(target.byteOrder);
    OrvIBase* sheet = OrvTemporaryStringWithNSString(text);
    const OrvPtr<> parser(sheet != nullptr ? OrvCSSParserCreate(sheet) : nullptr);
    if (!parser)
        return; // no memory: a sheet that was not read must not get a second rule
    int32_t start = 0;
    int32_t length = 0;
    if (OrvIBase* rule = OrvCSSParserFindElement(parser.get(), OrvTemporaryString(L"@charset"), 0,
                                                 &start, &length)) {
        if (!replaces)
            return;
        OrvCSSParserUpdateCharsetElement(parser.get(), rule, encoding, byteOrder);
        if (const auto rendered = renderedText(rule, L"", lineBreak)) {
            const auto first = unitOffset(text, 0, start);
            text.replace(first, unitOffset(text, first, length) - first, *rendered);
        }
    } else if (inserts) {
        const OrvPtr<> made(OrvCSSParserCreateCharsetElement(parser.get(), encoding, byteOrder));
        if (const auto line = made ? renderedText(made.get(), L"\n", lineBreak) : std::nullopt)
            text.insert(0, *line);
    }
}

} // namespace zelmora
