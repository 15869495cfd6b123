// The conversion of one file: read, detect, decode, change the text, encode, write, report.

#include "engine/document_controller.h"

#include "engine/conversion_log.h"
#include "engine/settings.h"
#include "engine/text_blocks.h"
#include "platform/text/utf8.h"
#include "platform/threads/turns.h"
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
    finishConversion(srcPath, std::move(conversion));
}

void ZelDocumentController::convertQueuedFile(const QueuedFile& file) {
    // Since the folder was searched, a link may have come into the way that leads elsewhere.
    const auto way = _services.files.checkWayToItemAtPath(file.path, file.givenLength);
    if (way.ok()) {
        doConvertProcess(file.path);
        return;
    }
    Conversion conversion;
    conversion.failure = reason("ReasonRead", way.error());
    finishConversion(file.path, std::move(conversion));
}

void ZelDocumentController::finishConversion(const std::string& srcPath, Conversion conversion) {
    const bool result = conversion.failure.empty();
    ++(result ? _convertedCount : _failedCount);
    if (_services.defaults.boolForKey(settings::createLogFile))
        logConversion(srcPath, conversion);
    if (!result)
        alert("FailedConvert", srcPath, conversion.failure);
    else if (conversion.lost.count != 0)
        tellLostCharacters(std::move(conversion.lost));
}

/// The converted file beside its source. It is dropped unless it is finished.
class ZelDocumentController::ConvertedFile {
  public:
    ConvertedFile(const ZelDocumentController& controller, const std::string& srcPath)
        : _controller(controller), _srcPath(srcPath) {}

    /// Adds `bytes` and empties them; finish() tells whether that worked.
    void write(platform::Bytes& bytes) {
        if (_file == nullptr)
            _file = _controller._services.files.newFileBesidePath(_srcPath);
        _file->write(bytes);
    }

    /// Drops what has been written, to begin anew.
    void drop() { _file.reset(); }

    /// Gives it the first free name. REQUIRES: something was written, be it no bytes.
    platform::Status finish() {
        // Nearly always that is the very first; asking beforehand would cost each file a call.
        _dstPath = numberedPath(_srcPath, 0);
        auto finished = _file->finishAtPath(_dstPath);
        if (!finished.ok() && finished.error().code == EEXIST) {
            _dstPath = _controller.dstPathForSrcPath(_srcPath);
            finished = _file->finishAtPath(_dstPath);
        }
        return finished;
    }

    [[nodiscard]] const std::string& srcPath() const { return _srcPath; }
    [[nodiscard]] const std::string& dstPath() const { return _dstPath; }

  private:
    const ZelDocumentController& _controller;
    const std::string& _srcPath;
    std::string _dstPath;
    std::unique_ptr<platform::NewFile> _file;
};

ZelDocumentController::Conversion
ZelDocumentController::convertFile(const std::string& srcPath) const {
    Conversion conversion;
    ConvertedFile file(*this, srcPath);
    if (needsWholeText(srcPath) || !convertByBlocks(conversion, file)) {
        file.drop();
        convertWhole(conversion, file);
    }
    if (!conversion.failure.empty())
        return conversion;
    if (const auto written = file.finish(); !written.ok())
        conversion.failure = reason("ReasonWrite", written.error());
    else if (const auto placed = doConvertProcessPostDstPath(file.dstPath(), srcPath); !placed.ok())
        conversion.failure = _services.strings.format(
            "ReasonPlace", {errorText(placed.error()), platform::displayPath(file.dstPath())});
    return conversion;
}

bool ZelDocumentController::needsWholeText(const std::string& srcPath) const {
    return isHTMLFile(srcPath) || isXMLFile(srcPath) || isCSSFile(srcPath);
}

ZelDocumentController::Conversion
ZelDocumentController::beginConversion(OrvEncodingInfo srcEncodingInfo) const {
    const auto& defaults = _services.defaults;
    Conversion conversion;
    conversion.srcEncodingInfo = srcEncodingInfo;
    conversion.srcEncodingInfo.characterMapping =
        static_cast<OrvCharacterMapping>(codeForKey(defaults, settings::sjisDeviceCharRead));
    conversion.dstEncodingInfo = targetEncodingInfo(conversion.srcEncodingInfo);
    conversion.dstLineBreak =
        static_cast<OrvLineBreak>(codeForKey(defaults, settings::lineBreakCode));
    conversion.halfToFullKatakana = defaults.boolForKey(settings::halfToFullKatakana);
    return conversion;
}

std::string ZelDocumentController::readingFailure(const platform::Error& error) const {
    // The file manager's word for a FIFO, a socket or a device, which it does not open.
    return error.code == EINVAL ? _services.strings.stringForKey("ReasonNoFile")
                                : reason("ReasonRead", error);
}

bool ZelDocumentController::convertByBlocks(Conversion& conversion, ConvertedFile& file) const {
    auto source = _services.files.openFileAtPath(file.srcPath());
    if (!source.ok()) {
        conversion.failure = readingFailure(source.error());
        return true;
    }
    TextBlocks blocks(std::move(*source));
    const auto encodingInfo = blocks.detectEncoding();
    if (!encodingInfo.ok()) {
        conversion.failure = readingFailure(encodingInfo.error());
        return true;
    }
    conversion = beginConversion(*encodingInfo);

    bool isConverted = true; // changed in a block's turn, as is the failure
    const auto convertTaken = [&](platform::Turns& turns, Conversion& blockConversion) {
        platform::Bytes buffer;
        platform::Bytes bytes;
        while (const auto index = turns.take()) {
            const auto block = blocks.read(*index, buffer);
            const bool isBlockConverted =
                block.ok() && *block && convertBlock(**block, *index, blockConversion, bytes);
            if (!turns.await(*index))
                return;
            if (isBlockConverted && blocks.confirmEncoding(*index, buffer)) {
                file.write(bytes);
                turns.pass(*index);
                continue;
            }
            isConverted = !block.ok();
            if (!block.ok())
                conversion.failure = readingFailure(block.error());
            turns.stop();
        }
    };
    // The others have to know the text's line break, which is in the first one.
    platform::Turns first(0, 1);
    convertTaken(first, conversion);
    if (isConverted && conversion.failure.empty()) {
        const Conversion begun = conversion; // in which a failure may be noted meanwhile
        platform::Turns others(1, blocks.count());
        platform::workInTurns(others, [&] {
            Conversion blockConversion = begun;
            convertTaken(others, blockConversion);
        });
    }
    if (conversion.failure.empty()) {
        if (const auto unchanged = blocks.checkUnchanged(); !unchanged.ok())
            conversion.failure = readingFailure(unchanged.error());
    }
    return isConverted || !conversion.failure.empty();
}

bool ZelDocumentController::convertBlock(platform::ByteView block, int index,
                                         Conversion& conversion, platform::Bytes& bytes) const {
    auto srcEncodingInfo = conversion.srcEncodingInfo;
    auto dstEncodingInfo = conversion.dstEncodingInfo;
    if (index != 0)
        srcEncodingInfo.hasBOM = dstEncodingInfo.hasBOM = false;
    TextReader reader(block, srcEncodingInfo);
    TextWriter writer(dstEncodingInfo, bytes);
    std::u16string lines;
    while (readConverted(reader, conversion, lines)) {
        if (!writer.write(lines))
            return false;
    }
    writer.finish();
    return !reader.hasFailed() && !reader.hasSwitched();
}

void ZelDocumentController::convertWhole(Conversion& conversion, ConvertedFile& file) const {
    auto source = _services.files.contentsAtPath(file.srcPath());
    if (!source.ok()) {
        conversion.failure = readingFailure(source.error());
        return;
    }
    conversion = beginConversion(OrvTextUtility::instance()->encodingInfoOfTextData(*source));
    std::u16string text;
    text.reserve(source->size()); // more than enough; what is not used costs nothing
    TextReader reader(*source, conversion.srcEncodingInfo);
    for (std::u16string lines; readConverted(reader, conversion, lines);)
        text += lines;
    *source = {}; // never more in memory than the steps still ahead need
    if (reader.hasFailed()) {
        const auto encoding = encodingNameKey(conversion.srcEncodingInfo.encoding);
        conversion.failure =
            _services.strings.format("ReasonDecode", {_services.strings.stringForKey(encoding)});
        conversion.srcLineBreak = OrvLineBreak::none;
        return;
    }
    if (isHTMLFile(file.srcPath()))
        doConvertProcessMETAElement(text, conversion.srcEncodingInfo);
    if (isXMLFile(file.srcPath()))
        doConvertProcessXMLProcInstruction(text, conversion.srcEncodingInfo);
    if (isCSSFile(file.srcPath()))
        doConvertProcessCSSElement(text, conversion.srcEncodingInfo, conversion.srcLineBreak);
    platform::Alterations alterations;
    auto output = doConvertProcessEncoding(text, conversion.srcEncodingInfo, alterations);
    if (alterations.count != 0)
        conversion.lost = lostCharacters(file.srcPath(), text, alterations);
    if (output)
        file.write(*output);
    else
        conversion.failure = _services.strings.stringForKey("ReasonEncode");
}

bool ZelDocumentController::readConverted(TextReader& reader, Conversion& conversion,
                                          std::u16string& lines) const {
    if (!reader.read(lines))
        return false;
    // The text's first line break is in its first lines.
    if (conversion.srcLineBreak == OrvLineBreak::none)
        conversion.srcLineBreak = OrvTextUtility::instance()->lineBreakTypeOfString(lines);
    doConvertProcessLinebreaks(lines, conversion);
    doConvertProcessHalfToFullKatakana(lines, conversion);
    return true;
}

void ZelDocumentController::doConvertProcessLinebreaks(std::u16string& lines,
                                                       const Conversion& conversion) const {
    const auto source = conversion.srcLineBreak;
    const auto target = conversion.dstLineBreak;
    if (source != OrvLineBreak::none && target != OrvLineBreak::none && source != target)
        OrvTextUtility::instance()->convertLineBreakOfString(lines, source, target);
}

void ZelDocumentController::doConvertProcessHalfToFullKatakana(std::u16string& lines,
                                                               const Conversion& conversion) const {
    if (conversion.halfToFullKatakana)
        OrvTextUtility::instance()->convertHalfToFullKatakanaOfString(lines);
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
