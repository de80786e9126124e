#include "torvelhost/session/options.h"

#include <string_view>

#include "base/exact_utf8.h"
#include "base/number.h"
#include "base/text.h"

namespace host {
namespace {

constexpr int kLargestSize = 20000;

enum class Value { kNone, kMayFollowSign, kWanted };  // after "=" alone, or as the next word too
struct OptionName {
    char letter;  // 0: none
    std::string_view word;
    Value value;
};
constexpr OptionName kOptions[] = {
    {'s', "script", Value::kWanted},    {'c', "command", Value::kWanted},
    {'o', "output", Value::kWanted},    {'p', "plot", Value::kWanted},
    {0, "size", Value::kWanted},        {0, "set", Value::kWanted},
    {0, "paper", Value::kWanted},       {0, "scale", Value::kWanted},
    {0, "layout", Value::kWanted},      {0, "colors", Value::kWanted},
    {0, "profile", Value::kWanted},     {0, "windows", Value::kNone},
    {0, "view", Value::kNone},          {0, "events", Value::kWanted},
    {0, "record", Value::kWanted},      {0, "summary", Value::kMayFollowSign},
    {0, "recover", Value::kNone},       {'q', "quiet", Value::kNone},
    {0, "help", Value::kMayFollowSign}, {0, "version", Value::kNone},
};

void apply(Options& options, std::string_view name, const std::wstring& value) {
    if (name == "script") {
        options.scripts.push_back({true, value});
    } else if (name == "command") {
        options.scripts.push_back({false, value});
    } else if (name == "output") {
        options.output = value;
    } else if (name == "plot") {
        options.plot = value;
    } else if (name == "size") {
        const std::size_t cross = value.find(L'x');
        const auto width = base::parseInteger(std::wstring_view(value).substr(0, cross));
        const auto height =
            base::parseInteger(std::wstring_view(value).substr(cross == value.npos ? value.size() : cross + 1));
        if (!width || !height || *width < 1 || *height < 1 || *width > kLargestSize || *height > kLargestSize)
            throw UsageError("--size: \"" + base::toUtf8(value) + "\" is no size; give WIDTHxHEIGHT in pixels");
        options.width = static_cast<int>(*width);
        options.height = static_cast<int>(*height);
    } else if (name == "paper") {
        options.plotSettings.paper = parsePaper(value);
        if (!options.plotSettings.paper)
            throw UsageError(
                "--paper: \"" + base::toUtf8(value) +
                "\" is no paper; give A0 to A5 or ANSI-A to ANSI-E, with -portrait or -landscape behind it "
                "or not, or WIDTHxHEIGHT in millimetres, 10 to 5000");
    } else if (name == "scale") {
        const auto scale = parsePlotScale(value);
        if (!scale)
            throw UsageError("--scale: \"" + base::toUtf8(value) +
                             "\" is no scale; give PAPER:DRAWING, as in 1:50 or 2:1, or fit");
        options.plotSettings.scale = *scale;
        options.plotSettings.hasScale = true;
    } else if (name == "layout") {
        options.plotSettings.layout = value;
    } else if (name == "colors") {
        const auto inks = parseInks(value);
        if (!inks) throw UsageError("--colors: \"" + base::toUtf8(value) + "\" is neither color nor mono nor dark");
        options.plotSettings.inks = *inks;
        options.plotSettings.hasColors = true;
    } else if (name == "set") {
        const std::size_t equals = value.find(L'=');
        if (equals == value.npos || equals == 0)
            throw UsageError("--set: \"" + base::toUtf8(value) + "\" is not NAME=VALUE");
        options.variables.emplace_back(value.substr(0, equals), value.substr(equals + 1));
    } else if (name == "profile") {
        options.profile = value;
    } else if (name == "windows") {
        options.windows = true;
    } else if (name == "view") {
        options.view = true;
    } else if (name == "events") {
        options.events = value;
    } else if (name == "record") {
        options.record = value;
    } else if (name == "summary") {
        if (!value.empty() && value != L"text" && value != L"json")
            throw UsageError("--summary: \"" + base::toUtf8(value) + "\" is neither text nor json");
        options.summary = value == L"json" ? Options::Summary::kJson : Options::Summary::kText;
    } else if (name == "recover") {
        options.recover = true;
    } else if (name == "quiet") {
        options.quiet = true;
    } else if (name == "help") {
        options.help = true;
        options.helpTopic = value;
    } else if (name == "version") {
        options.version = true;
    }
}

const OptionName* findOption(std::string_view argument) {
    for (const OptionName& option : kOptions)
        if (argument.starts_with("--") ? option.word == argument.substr(2)
                                       : argument.size() == 2 && option.letter && option.letter == argument[1])
            return &option;
    return nullptr;
}

}  // namespace

const char kUsage[] =
    "Usage: torvelhost [OPTIONS] [DRAWING.dxf]\n"
    "  DRAWING                 none: a new, empty drawing\n"
    "  -s, --script FILE       take replies from FILE (\"-\": standard input)\n"
    "  -c, --command TEXT      take replies from TEXT, where \"|\" separates lines; may be repeated\n"
    "  -o, --output FILE       save the drawing there at the end (may be the drawing itself)\n"
    "  -p, --plot FILE         draw what the view shows there at the end (.svg, .png or .pdf)\n"
    "      --size WxH          of the plot and the view in pixels (1600x1200)\n"
    "      --paper NAME        of a plot in PDF: A0 to A5, ANSI-A to ANSI-E, also A3-portrait, or WxH in millimetres "
    "(A4)\n"
    "      --scale A:B         of a plot in PDF: A millimetres on paper are B in the drawing (fit)\n"
    "      --layout NAME       plot this layout as its page is set up; in PDF also all: a page each\n"
    "      --colors mono|dark  plot everything in black, or on dark ground\n"
    "      --set NAME=VALUE    set a system variable first; may be repeated\n"
    "      --profile FILE      the settings store (default: the user's own)\n"
    "      --windows           show dialogs as windows (on Windows the default without a script)\n"
    "      --view              open a window with the drawing; -s and -c run in it first, -o and -p hold at its end\n"
    "      --events FILE       work that window by a script of events, without a screen unless there is --view\n"
    "      --record FILE       write what is done in the window as a script\n"
    "      --summary[=json]    print what is in the drawing, and do nothing else\n"
    "      --recover           read what can be read of a damaged drawing; saving it needs another name\n"
    "  -q, --quiet             no progress, warnings, notices, prompts and echoes\n"
    "      --help[=COMMAND]    print this, or what a command asks and does\n"
    "      --version           print the version\n"
    "Without -s, -c, -o, -p, --view and --events it is a command prompt.\n"
    "Exit status: 0 every command finished; 1 a command was cancelled or failed; 2 wrong usage, or a script\n"
    "that does not fit; 3 a file could not be read or written.\n";

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    bool optionsEnded = false;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        std::string_view argument = arguments[i];
        if (optionsEnded || argument.size() < 2 || argument[0] != '-') {
            if (options.drawing) throw UsageError("more than one drawing: \"" + std::string(argument) + "\"");
            options.drawing = base::fromUtf8Exact(argument);
            continue;
        }
        if (argument == "--") {
            optionsEnded = true;
            continue;
        }
        std::optional<std::string_view> attached;  // --name=value
        if (const std::size_t equals = argument.find('='); argument.starts_with("--") && equals != argument.npos) {
            attached = argument.substr(equals + 1);
            argument = argument.substr(0, equals);
        }
        const OptionName* option = findOption(argument);
        if (!option) throw UsageError("unknown option " + std::string(argument));
        if (attached) {
            if (option->value == Value::kNone) throw UsageError(std::string(argument) + " takes no value");
            apply(options, option->word, base::fromUtf8Exact(*attached));
        } else if (option->value != Value::kWanted) {
            apply(options, option->word, L"");
        } else if (++i < arguments.size()) {
            apply(options, option->word, base::fromUtf8Exact(arguments[i]));
        } else {
            throw UsageError(std::string(argument) + " wants a value");
        }
    }
    return options;
}

}  // namespace host
