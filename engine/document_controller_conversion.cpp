// The conversion of one file: read, detect, decode, change the text, encode, write, report.

#include "engine/document_controller.h"

#include "engine/conversion_log.h"
#include "engine/settings.h"
#include "platform/text/utf8.h"
#include "textutil/text_utility.h"

#include <cerrno>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zelmora {

using settings::codeForKey;

namespace {

/// What the system calls an error, without the path, which the alert names itself.
std::string errorText(const platform::Error& error) {
    return std::generic_category().message(error.code);
}

} // namespace

void ZelDocumentController::doConvertProcess(const std::string& srcPath) {
    Conversion conversion;
    try {
        conversion = convertFile(srcPath);
    } catch (const std::bad_alloc&) {
        conversion.failure = reason("ReasonRead", {.code = ENOMEM, .message = {}});
    } catch (const std::length_error&) { // more than a string can hold at all
        conversion.failure = reason("ReasonRead", {.code = ENOMEM, .message = {}});
    }
    const bool result = conversion.failure.empty();
    ++(result ? _convertedCount : _failedCount);
    if (_services.defaults.boolForKey(settings::createLogFile))
        logConversion(srcPath, conversion);
    if (!result)
        alert("FailedConvert", srcPath, conversion.failure);
    else if (conversion.lost.count != 0)
        tellLostCharacters(std::move(conversion.lost));
}

ZelDocumentController::Conversion
ZelDocumentController::convertFile(const std::string& srcPath) const {
    const auto& defaults = _services.defaults;
    const auto textUtility = OrvTextUtility::instance();
    Conversion conversion;

    auto source = _services.files.contentsAtPath(srcPath);
    if (!source.ok()) {
        // The file manager's word for a FIFO, a socket or a device, which it does not open.
        conversion.failure = source.error().code == EINVAL
                                 ? _services.strings.stringForKey("ReasonNoFile")
                                 : reason("ReasonRead", source.error());
        return conversion;
    }
    conversion.srcEncodingInfo = textUtility->encodingInfoOfTextData(*source);
    conversion.srcEncodingInfo.characterMapping =
        static_cast<OrvCharacterMapping>(codeForKey(defaults, settings::sjisDeviceCharRead));
    auto text = textUtility->stringWithData(*source, conversion.srcEncodingInfo);
    *source = {}; // never more in memory than the steps still ahead need
    if (!text) {
        const auto& strings = _services.strings;
        conversion.failure = strings.format(
            "ReasonDecode",
            {strings.stringForKey(encodingNameKey(conversion.srcEncodingInfo.encoding))});
        return conversion;
    }

    conversion.srcLineBreak = textUtility->lineBreakTypeOfString(*text);
    doConvertProcessLinebreaks(*text);
    doConvertProcessHalfToFullKatakana(*text);
    if (isHTMLFile(srcPath))
        doConvertProcessMETAElement(*text, conversion.srcEncodingInfo);
    if (isXMLFile(srcPath))
        doConvertProcessXMLProcInstruction(*text, conversion.srcEncodingInfo);
    if (isCSSFile(srcPath))
        doConvertProcessCSSElement(*text, conversion.srcEncodingInfo, conversion.srcLineBreak);

    platform::Alterations alterations;
    const auto output = doConvertProcessEncoding(*text, conversion.srcEncodingInfo, alterations);
    if (alterations.count != 0)
        conversion.lost = lostCharacters(srcPath, *text, alterations);
    text.reset();
    if (!output) {
        conversion.failure = _services.strings.stringForKey("ReasonEncode");
        return conversion;
    }
    const auto dstPath = dstPathForSrcPath(srcPath);
    if (const auto written = _services.files.createFileAtPath(dstPath, *output); !written.ok())
        conversion.failure = reason("ReasonWrite", written.error());
    else if (const auto placed = doConvertProcessPostDstPath(dstPath, srcPath); !placed.ok())
        conversion.failure = _services.strings.format(
            "ReasonPlace", {errorText(placed.error()), platform::displayPath(dstPath)});
    return conversion;
}

void ZelDocumentController::doConvertProcessLinebreaks(std::u16string& text) const {
    const auto target =
        static_cast<OrvLineBreak>(codeForKey(_services.defaults, settings::lineBreakCode));
    if (target == OrvLineBreak::none)
        return;
    const auto textUtility = OrvTextUtility::instance();
    const auto source = textUtility->lineBreakTypeOfString(text);
    if (source != OrvLineBreak::none && source != target)
        textUtility->convertLineBreakOfString(text, source, target);
}

void ZelDocumentController::doConvertProcessHalfToFullKatakana(std::u16string& text) const {
    if (_services.defaults.boolForKey(settings::halfToFullKatakana))
        OrvTextUtility::instance()->convertHalfToFullKatakanaOfString(text);
}

std::optional<platform::Bytes>
ZelDocumentController::doConvertProcessEncoding(std::u16string_view text,
                                                OrvEncodingInfo srcEncodingInfo,
                                                platform::Alterations& alterations) const {
    return OrvTextUtility::instance()->dataWithString(text, targetEncodingInfo(srcEncodingInfo),
                                                      alterations);
}

OrvEncodingInfo ZelDocumentController::encodingInfoOfSettings() const {
    const auto& defaults = _services.defaults;
    return {.encoding = static_cast<OrvEncoding>(codeForKey(defaults, settings::encodingCode)),
            .byteOrder = defaults.boolForKey(settings::littleEndian) ? OrvByteOrder::littleEndian
                                                                     : OrvByteOrder::bigEndian,
            .hasBOM = defaults.boolForKey(settings::putBOM)};
}

OrvEncodingInfo ZelDocumentController::targetEncodingInfo(OrvEncodingInfo srcEncodingInfo) const {
    auto target = encodingInfoOfSettings();
    if (target.encoding == OrvEncoding::none)
        target = srcEncodingInfo;
    target.characterMapping = static_cast<OrvCharacterMapping>(
        codeForKey(_services.defaults, settings::sjisDeviceCharWrite));
    return target;
}

std::string ZelDocumentController::reason(std::string_view key,
                                          const platform::Error& error) const {
    return _services.strings.format(key, {errorText(error)});
}

void ZelDocumentController::logConversion(const std::string& srcPath,
                                          const Conversion& conversion) const {
    const auto& defaults = _services.defaults;
    ConversionLogEntry entry;
    entry.result = conversion.failure.empty();
    entry.filePath = srcPath;
    entry.srcLineBreak = conversion.srcLineBreak;
    entry.dstLineBreak = static_cast<OrvLineBreak>(codeForKey(defaults, settings::lineBreakCode));
    entry.srcEncodingInfo = conversion.srcEncodingInfo;
    // The log tells the settings, not what became of the file: code 0 reads as "not converted".
    entry.dstEncodingInfo = encodingInfoOfSettings();
    entry.halfwidthKatakana = defaults.boolForKey(settings::halfToFullKatakana);
    entry.html =
        defaults.boolForKey(settings::replaceMETA) || defaults.boolForKey(settings::exportMETA);
    entry.xml = defaults.boolForKey(settings::replaceXMLProc);
    ZelLog::sharedLog(_services)->logConversionActionWithResult(entry);
}

void ZelDocumentController::alert(std::string_view key, const std::string& path,
                                  const std::string& why) const {
    // The worker goes on with the next file; the alert waits for its turn on the main thread.
    _services.mainLoop.mainQueue().async([services = _services, key = std::string(key), path, why] {
        const auto& strings = services.strings;
        services.userInterface.runModal(
            {strings.stringForKey(key),
             strings.format(key + "Info", {platform::displayPath(path)}) + " " + why});
    });
}

} // namespace zelmora
