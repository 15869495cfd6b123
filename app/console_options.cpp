#include "app/console_options.h"

#include "engine/settings.h"
#include "platform/text/path_string.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <string_view>

namespace zelmora {

namespace {

/// One settings key and the text of its value, as --set takes it; "*" is the option's own argument.
struct Assignment {
    std::string_view key;
    std::string_view value;
};

/// A friendly option: what it writes to which keys.
struct FriendlyOption {
    std::string_view name;
    std::vector<Assignment> assignments;
    /// For options whose argument is one of a few words: the word and the value it stands for.
    std::vector<std::pair<std::string_view, std::string_view>> words;
    bool isPath = false; ///< the argument is made absolute
    [[nodiscard]] bool takesArgument() const {
        return std::any_of(assignments.begin(), assignments.end(),
                           [](const Assignment& each) { return each.value == "*"; });
    }
};

const std::vector<FriendlyOption>& friendlyOptions() {
    static const std::vector<FriendlyOption> options = {
        {"--encoding",
         {{settings::encodingCode, "*"}},
         {{"keep", "0"},
          {"shift_jis", "1"},
          {"sjis", "1"},
          {"iso-2022-jp", "2"},
          {"jis", "2"},
          {"euc-jp", "3"},
          {"eucjp", "3"},
          {"utf-8", "4"},
          {"utf8", "4"},
          {"utf-16", "5"},
          {"utf16", "5"},
          {"utf-32", "6"},
          {"utf32", "6"}}},
        {"--line-break",
         {{settings::lineBreakCode, "*"}},
         {{"keep", "0"}, {"lf", "1"}, {"cr", "2"}, {"crlf", "3"}, {"ls", "4"}}},
        {"--byte-order", {{settings::littleEndian, "*"}}, {{"little", "YES"}, {"big", "NO"}}},
        {"--mapping",
         {{settings::sjisDeviceCharRead, "*"}, {settings::sjisDeviceCharWrite, "*"}},
         {{"mac", "0"}, {"windows", "1"}}},
        {"--ext", {{settings::nameExtensionArray, "*"}}, {}},
        {"--backup", {{settings::autoBackup, "YES"}, {settings::backupDataDir, "*"}}, {}, true},
        {"--no-backup", {{settings::autoBackup, "NO"}}, {}},
        {"--log", {{settings::createLogFile, "YES"}, {settings::logFilePath, "*"}}, {}, true},
        {"--bom", {{settings::putBOM, "YES"}}, {}},
        {"--no-bom", {{settings::putBOM, "NO"}}, {}},
        {"--katakana", {{settings::halfToFullKatakana, "YES"}}, {}},
        {"--html", {{settings::replaceMETA, "YES"}, {settings::exportMETA, "YES"}}, {}},
        {"--xml", {{settings::replaceXMLProc, "YES"}}, {}},
        {"--css", {{settings::replaceCSSCharSet, "YES"}, {settings::exportCSSCharSet, "YES"}}, {}},
    };
    return options;
}

/// Turns options and their arguments, in the order given, into settings.
class SettingsReader {
  public:
    SettingsReader(ConsoleOptions& options, const platform::LocalizedStrings& strings)
        : _options(options), _strings(strings) {}

    /// nullopt: accepted.
    std::optional<UsageError> readSet(const std::string& argument) {
        const auto equals = argument.find('=');
        if (equals == std::string::npos)
            return error("ConsoleBadSet", {argument});
        return assign(argument.substr(0, equals), argument.substr(equals + 1), "--set");
    }

    std::optional<UsageError> readReport(const std::string& argument) {
        if (argument.empty())
            return error("ConsoleBadValue", {"--report", argument});
        _options.reportPath = platform::absolutePath(argument);
        return std::nullopt;
    }

    std::optional<UsageError> readFriendly(const FriendlyOption& option, std::string argument) {
        if (!option.words.empty()) {
            const auto word =
                std::find_if(option.words.begin(), option.words.end(), [&](const auto& each) {
                    return platform::equalsIgnoringASCIICase(each.first, argument);
                });
            if (word == option.words.end())
                return error("ConsoleBadValue", {std::string(option.name), argument});
            argument = word->second;
        } else if (option.isPath && argument.empty()) {
            return error("ConsoleBadValue", {std::string(option.name), argument});
        } else if (option.isPath && !argument.starts_with('~')) {
            argument = platform::absolutePath(argument);
        }
        for (const auto& [key, value] : option.assignments) {
            const auto text = value == "*" ? std::string_view(argument) : value;
            if (auto failure = assign(key, text, option.name))
                return failure;
        }
        return std::nullopt;
    }

  private:
    std::optional<UsageError> assign(std::string_view key, std::string_view text,
                                     std::string_view option) {
        const auto* settingKey = settings::keyNamed(key);
        if (settingKey == nullptr)
            return error("ConsoleUnknownKey", {std::string(key)});
        auto value = settings::valueFromText(*settingKey, text);
        if (!value)
            return error(
                "ConsoleBadValue",
                {option == "--set" ? std::string(key) : std::string(option), std::string(text)});
        _options.settings.emplace_back(key, std::move(*value));
        return std::nullopt;
    }

    [[nodiscard]] UsageError error(std::string_view key,
                                   std::initializer_list<std::string> arguments) const {
        const std::vector<std::string> texts(arguments);
        return {texts.size() == 1 ? _strings.format(key, {texts[0]})
                                  : _strings.format(key, {texts[0], texts[1]})};
    }

    ConsoleOptions& _options;
    const platform::LocalizedStrings& _strings;
};

/// The arguments as the parser takes them: as a stack, the last one first, and "--name=" in two,
/// lest it look for the empty value in the next argument.
std::vector<std::string> argumentStack(std::span<const char* const> arguments,
                                       const CLI::App& parser) {
    std::vector<std::string> stack;
    bool isBehindMark = false;
    for (const std::string_view argument : arguments) {
        isBehindMark = isBehindMark || argument == "--";
        const std::string name(argument.substr(0, argument.find('=')));
        const bool isCutShort = name.starts_with("--") && name.size() + 1 == argument.size();
        const auto* option = isCutShort ? parser.get_option_no_throw(name) : nullptr;
        if (!isBehindMark && option != nullptr && option->get_expected_max() > 0) {
            stack.push_back(name);
            stack.emplace_back();
        } else {
            stack.emplace_back(argument);
        }
    }
    std::reverse(stack.begin(), stack.end());
    return stack;
}

} // namespace

std::variant<ConsoleOptions, UsageError>
parseConsoleOptions(std::span<const char* const> arguments,
                    const platform::LocalizedStrings& strings) {
    ConsoleOptions options;
    CLI::App parser;
    parser.set_help_flag();
    for (const auto& [name, value] :
         {std::pair("--help", &options.help), std::pair("--version", &options.version),
          std::pair("--detect", &options.detect), std::pair("--save", &options.save),
          std::pair("--quiet", &options.quiet)})
        parser.add_flag(name, *value)->disable_flag_override();
    parser.allow_extras();
    // Settings are read from the raw results below, in the order in which they were given; each
    // occurrence of an option takes one argument, or none.
    const auto addOption = [&](std::string_view name) {
        return parser.add_option(std::string(name))->take_all();
    };
    const auto addFlag = [&](std::string_view name) {
        return parser.add_flag(std::string(name))->take_all()->disable_flag_override();
    };
    const auto* set = addOption("--set");
    const auto* report = addOption("--report");
    std::map<const CLI::Option*, const FriendlyOption*> friendly;
    for (const auto& option : friendlyOptions())
        friendly[option.takesArgument() ? addOption(option.name) : addFlag(option.name)] = &option;

    if (auto failure =
            parseCommandLine(parser, argumentStack(arguments, parser), options.paths, strings))
        return std::move(*failure);

    SettingsReader reader(options, strings);
    std::map<const CLI::Option*, size_t> used;
    for (const auto* option : parser.parse_order()) {
        std::optional<UsageError> failure;
        const auto found = friendly.find(option);
        if (option == set)
            failure = reader.readSet(option->results()[used[option]++]);
        else if (option == report)
            failure = reader.readReport(option->results()[used[option]++]);
        else if (found != friendly.end())
            failure = reader.readFriendly(*found->second, option->results()[used[option]++]);
        if (failure)
            return *failure;
    }
    if (options.paths.empty() && !options.help && !options.version && !options.save)
        return UsageError{strings.stringForKey("ConsoleNoPath")};
    return options;
}

} // namespace zelmora
