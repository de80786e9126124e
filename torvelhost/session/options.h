// The command line of torvelhost.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "torvelhost/plot/plot_settings.h"

namespace host {

/// Exit statuses of the program.
enum ExitStatus { kAllFinished = 0, kSomeFailed = 1, kWrongUsage = 2, kFileFailed = 3 };

struct Options {
    struct Script {
        bool isFile = false;  // else `text` is the script, its lines separated by "|"
        std::wstring text;
    };
    std::optional<std::wstring> drawing;
    std::vector<Script> scripts;  // in the order given
    std::optional<std::wstring> output;
    std::optional<std::wstring> plot;
    int width = 1600, height = 1200;
    PlotSettings plotSettings;
    std::vector<std::pair<std::wstring, std::wstring>> variables;
    std::optional<std::wstring> profile;
    bool windows = false;
    bool view = false;                   // a window with the drawing
    std::optional<std::wstring> events;  // a script that works that window, without a screen
    std::optional<std::wstring> record;  // what is done in it, as a script
    enum class Summary { kNone, kText, kJson };
    Summary summary = Summary::kNone;
    bool recover = false;  // drawings that are damaged
    bool quiet = false;
    bool help = false;
    std::wstring helpTopic;  // empty: the options
    bool version = false;

    bool hasWindow() const { return view || events; }
    /// A command prompt is shown: nothing else was asked for.
    bool isInteractive() const { return scripts.empty() && !output && !plot && !hasWindow(); }
};

class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The arguments are UTF-8, the program's name first. Throws UsageError.
Options parseOptions(const std::vector<std::string>& arguments);
extern const char kUsage[];

}  // namespace host
