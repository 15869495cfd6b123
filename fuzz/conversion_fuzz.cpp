// A file of any bytes, any settings: the conversion leaves one file, which holds what the plain
// re-telling of each step makes of it and decodes strictly; or, where there is nothing to decode,
// the source as it was.
#include "engine/document_controller.h"
#include "engine/settings.h"
#include "foundation/orv_ptr.h"
#include "fuzz_input.h"
#include "plain_passes.h"
#include "platform/console/terminal_user_interface.h"
#include "tests/support/temporary_directory.h"
#include "tests/textutil/plain_detector.h"
#include "textutil/text_utility_private.h"

#include <array>
#include <cstdio>
#include <fcntl.h>

using namespace zelmora;
using fuzz::require;

namespace {

/// Files longer than this are converted in the same way as those a little shorter: in pieces of
/// 64 KiB.
constexpr size_t kMostBytes = 160 << 10;

/// A main loop that nobody runs: what is scheduled waits to be drained.
class IdleLoop final : public platform::RunLoop {
  public:
    int run() override { return 0; }
    void stop(int) override {}

  protected:
    void wakeUp() override {}
};

/// An engine on a folder of its own, made once. The worker sleeps: conversions are run here.
struct Engine {
    Engine() {
        defaults.setValueForThisRun(listOf({"html", "xhtml"}), settings::htmlExtensionArray);
        defaults.setValueForThisRun(listOf({"xml", "xhtml"}), settings::xmlExtensionArray);
    }

    static platform::PropertyListArray listOf(std::initializer_list<std::string> extensions) {
        platform::PropertyListArray list;
        for (const auto& extension : extensions)
            list.emplace_back(platform::PropertyListDictionary{{"nameExtension", extension}});
        return list;
    }

    test::TemporaryDirectory folder;
    platform::UserDefaults defaults;
    platform::LocalizedStrings strings;
    IdleLoop loop;
    platform::TerminalUserInterface userInterface{open("/dev/null", O_WRONLY | O_CLOEXEC), [] {}};
    EngineServices services{defaults, platform::FileManager::defaultManager(), strings, loop,
                            userInterface};
    struct Foundation {
        Foundation() { OrvFoundationInitialize(); }
        ~Foundation() { OrvFoundationTerminate(); }
    } foundation;
    ZelDocumentController controller{services};
};

struct Choices {
    OrvEncodingInfo target;
    OrvCharacterMapping readMapping;
    OrvLineBreak lineBreak;
    bool katakana;
    const char* name;
};

/// The settings that the first bytes of the input choose; codes beside the known ones too.
Choices choose(fuzz::Input& input, platform::UserDefaults& defaults) {
    using namespace settings;
    const auto set = [&](std::string_view key, int64_t value) {
        defaults.setValueForThisRun(value, key);
        return static_cast<int32_t>(value);
    };
    constexpr std::array kNames = {"a.txt", "a.html", "a.xhtml", "a.css"};
    Choices choices{};
    choices.name = kNames[input.below(4)];
    choices.target.encoding = OrvEncoding{set(encodingCode, input.below(8))};
    choices.lineBreak = OrvLineBreak{set(lineBreakCode, input.below(5))};
    choices.readMapping = OrvCharacterMapping{set(sjisDeviceCharRead, input.below(2))};
    choices.target.characterMapping = OrvCharacterMapping{set(sjisDeviceCharWrite, input.below(2))};
    const unsigned switches = input.byte();
    choices.target.byteOrder =
        set(littleEndian, switches & 1) != 0 ? OrvByteOrder::littleEndian : OrvByteOrder::bigEndian;
    choices.target.hasBOM = set(putBOM, switches >> 1 & 1) != 0;
    choices.katakana = set(halfToFullKatakana, switches >> 2 & 1) != 0;
    set(replaceMETA, switches >> 3 & 1);
    set(exportMETA, switches >> 4 & 1);
    set(replaceXMLProc, switches >> 5 & 1);
    set(replaceCSSCharSet, switches >> 6 & 1);
    set(exportCSSCharSet, switches >> 7 & 1);
    return choices;
}

/// What the conversion is to write, step by step; nullopt when the bytes are no text.
std::optional<platform::Bytes> expectedBytes(const Engine& engine, const Choices& choices,
                                             platform::ByteView source) {
    const OrvTextUtilityPrivate utility;
    OrvEncodingInfo info = plainDetect(source);
    info.characterMapping = choices.readMapping;
    auto text = utility.stringWithData(source, info);
    if (!text)
        return std::nullopt;
    const OrvLineBreak kind = fuzz::plainLineBreakType(*text);
    if (choices.lineBreak != OrvLineBreak::none && kind != OrvLineBreak::none)
        text = fuzz::plainLineBreaks(*text, kind, choices.lineBreak);
    if (choices.katakana)
        text = fuzz::plainFullWidthKatakana(*text);
    const std::string name = choices.name;
    if (name.ends_with("html"))
        engine.controller.doConvertProcessMETAElement(*text, info);
    if (name.ends_with("xhtml"))
        engine.controller.doConvertProcessXMLProcInstruction(*text, info);
    if (name.ends_with("css"))
        engine.controller.doConvertProcessCSSElement(*text, info, kind);
    OrvEncodingInfo target = choices.target;
    if (target.encoding == OrvEncoding::none) {
        target = info;
        target.characterMapping = choices.target.characterMapping;
    }
    auto bytes = utility.dataWithString(*text, target);
    require(utility.stringWithData(*bytes, target).has_value());
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Engine engine;
    const OrvPtr<> pool(OrvTemporaryObjectsPoolCreate());
    fuzz::Input input(data, size);
    const Choices choices = choose(input, engine.defaults);
    const std::string source = input.repeatedRest(kMostBytes);
    const auto expected = expectedBytes(engine, choices, platform::bytesOf(source));

    const std::string path = engine.folder.writeFile(choices.name, source);
    engine.controller.doConvertProcess(path);
    engine.loop.mainQueue().drain();
    require(engine.folder.items() == std::vector<std::string>{choices.name});
    require(test::readFile(path) ==
            (expected ? std::string(platform::charsOf(*expected)) : source));
    std::remove(path.c_str());
    return 0;
}
