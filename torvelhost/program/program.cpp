#include "torvelhost/program/program.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>

#include "base/console.h"
#include "base/files.h"
#include "base/modules.h"
#include "base/paths.h"
#include "base/text.h"
#include "hostapi/host_names.h"
#include "torvelhost/commands/command_loop.h"
#include "torvelhost/lines/dialog_lines.h"
#include "torvelhost/lines/help_text.h"
#include "torvelhost/lines/progress.h"
#include "torvelhost/plot/plot.h"
#include "torvelhost/plot/sheet.h"
#include "torvelhost/program/summary.h"
#include "torvelhost/program/view_window.h"
#include "torvelhost/session/application.h"
#include "torvelhost/session/drawing_files.h"

namespace host {
namespace {

constexpr char kVersion[] = "torvelhost " TORVEL_VERSION "\n";

// The command module. It knows the way back by itself, and stays loaded: its commands are registered until the end.
// A script of its commands has no use for a host without them.
void loadCommandModule(Terminal& terminal, bool isNeeded) {
    const std::wstring fileName = base::libraryFileName(hostapi::kCommandModule);
    std::wstring reason;
    base::ModuleReference module = base::loadModule(fileName, &reason);
    if (!module) {
        const base::FileError error(fileName, L"the commands in it are missing: " + reason);
        if (isNeeded) throw error;
        return terminal.error(base::fromUtf8(error.what()));
    }
    static_cast<void>(module.release());
}

std::unique_ptr<ScriptReplies> makeScript(const Options& options, Terminal& terminal) {
    auto replies = std::make_unique<ScriptReplies>(terminal);
    for (const Options::Script& script : options.scripts)
        if (script.isFile)
            replies->addFile(script.text);
        else
            replies->addText(script.text);
    return replies;
}

std::unique_ptr<ReplySource> makeReplies(const Options& options, Terminal& terminal) {
    if (!options.isInteractive()) return makeScript(options, terminal);
    // Ctrl+C cancels a prompt and never loses the work of a person.
    if (base::isTerminal(base::Stream::kInput)) base::keepInterrupts();
    return std::make_unique<TypedReplies>(terminal);
}

OdDbDatabasePtr readDrawing(const std::optional<std::wstring>& drawing, const Options& options, Terminal& terminal,
                            Profile& profile) {
    if (!drawing) return OdDbDatabase::createNew();
    return onFile(terminal, L"Reading", L"read the drawing", *drawing,
                  [&] { return readDrawingFile(*drawing, options.recover, profile); });
}

OdDbDatabasePtr openDrawing(const std::optional<std::wstring>& drawing, const Options& options,
                            Application& application) {
    Terminal& terminal = application.terminal();
    OdDbDatabasePtr database = readDrawing(drawing, options, terminal, application.profile());
    for (const OdDbWarning& warning : database->warnings()) terminal.warning(base::fromUtf8(warning.text));
    if (!database->modelSpaceId())
        throw base::FileError(*drawing,
                              L"no model space is left of it, so there is nothing to show and nothing to draw "
                              L"in. Remedy: --recover adds an empty one");
    return database;
}

void setVariables(const Options& options, Variables& variables) {
    for (const auto& [name, value] : options.variables) {
        std::wstring reason;
        if (!variables.set(name, value, reason)) throw UsageError("--set: " + base::toUtf8(reason));
    }
}

void saveDrawing(const Options& options, Application::Session& session, Terminal& terminal) {
    if (options.output) {
        onFile(
            terminal, L"Saving", L"save the drawing there", *options.output,
            [&] { session.document.save(*options.output); });
    } else if (options.isInteractive() && session.document.isModified()) {
        terminal.notice(L"The changes were not saved (the command SAVE does).");
    }
}

// Where memory is so short that not even an exception can be thrown, or is thrown where none may be.
// Empty until the options are read.
char g_drawingName[1024] = "";

std::terminate_handler g_terminateBefore = nullptr;

void nameDrawing(const std::wstring& drawing) {
    std::snprintf(g_drawingName, sizeof g_drawingName, "%s",
                  drawing.empty() ? "the new drawing" : base::toUtf8(visible(drawing)).c_str());
}

void endWithoutMemory() {
    if (const std::exception_ptr exception = std::current_exception()) {
        try {
            std::rethrow_exception(exception);
        } catch (const std::bad_alloc&) {
        } catch (...) {
            g_terminateBefore();
        }
    }
    const bool isRunning = g_drawingName[0] != 0;
    for (const char* part : {"torvelhost: ", static_cast<const char*>(g_drawingName), isRunning ? ": " : "",
                             "there is not enough memory to ", isRunning ? "go on\n" : "start\n"})
        base::writeTo(base::Stream::kError, part);
    std::_Exit(kFileFailed);
}

void checkPlotSettings(const PlotSettings& settings, const std::optional<std::wstring>& plot) {
    const bool isPdf = plot && isPdfFileName(*plot);
    const auto refuse = [&](bool isGiven, const char* option, const char* what, const char* instead) {
        if (isGiven) throw UsageError(std::string(option) + ": only " + what + instead);
    };
    constexpr char kGivePdf[] = "; give -p a name that ends in .pdf";
    refuse(settings.paper && !isPdf, "--paper", "a plot in PDF has paper", kGivePdf);
    refuse(settings.hasScale && !isPdf, "--scale", "a plot in PDF has a scale", kGivePdf);
    refuse(settings.hasAllLayouts() && !isPdf, "--layout", "a plot in PDF has pages for all layouts", kGivePdf);
    refuse(settings.layout && !plot, "--layout", "what is plotted", "; give -p too");
    refuse(settings.hasColors && !plot, "--colors", "what is plotted", "; give -p too");
}

// Before anything is done with the drawing.
void checkLayout(const Options& options, const OdDbDatabase& database) {
    const PlotSettings& settings = options.plotSettings;
    if (settings.layout && !settings.hasAllLayouts() && !hasLayout(database, *settings.layout))
        throw UsageError("--layout: the drawing has no layout \"" + base::toUtf8(*settings.layout) + "\"; it has " +
                         base::toUtf8(layoutList(database)));
}

// Refuses what cannot be done before anything is.
void checkOptions(const Options& options) {
    if (options.output == L"-")
        throw UsageError("--output: a drawing is saved to a file, not to standard output; ./- is a file of that name");
    if (options.output && isDwgName(*options.output))
        throw UsageError("--output: drawings are saved as DXF; give a name that ends in .dxf");
    if (options.summary != Options::Summary::kNone && !options.isInteractive())
        throw UsageError("--summary: nothing else is done with the drawing; leave -s, -c, -o and -p out");
    if (options.plot && !isPlotFileName(*options.plot))
        throw UsageError("--plot: \"" + base::toUtf8(*options.plot) +
                         "\" is no picture; give a name that ends in .svg, .png or .pdf");
    checkPlotSettings(options.plotSettings, options.plot);
    if (options.record && !options.hasWindow())
        throw UsageError("--record: only what is done in a window is recorded; give --view or --events too");
    if (options.events && options.windows)
        throw UsageError("--windows: no dialog is a window where --events works the drawing's");
}

// Nothing of a session is needed for it, nor the command module.
ExitStatus summarize(const Options& options, Terminal& terminal) {
    Profile profile = Profile::of(options.profile);
    const OdDbDatabasePtr database =
        readDrawing(options.drawing, options, terminal, profile);  // its warnings stand in the summary
    printSummary(*database, options.summary == Options::Summary::kJson, terminal);
    return terminal.outputFailed() ? kFileFailed : kAllFinished;
}

// Where dialogs cannot be windows, that is said before anything is done.
void requireWindows() {
    std::wstring reason;
    if (!dialogs::useWindows(nullptr, {}, &reason)) throw UsageError("--windows: " + base::toUtf8(reason));
    dialogs::useStandard();
}

// The end of a run: what the options ask for then.
ExitStatus finish(const Options& options, Application& application, Terminal& terminal, ExitStatus status) {
    saveDrawing(options, *application.session(), terminal);
    if (options.plot) application.plot(options.plotSettings, *options.plot);
    try {
        application.profile().save();
    } catch (const base::FileError& error) {
        terminal.warning(base::fromUtf8(error.what()));
    }
    if (terminal.outputFailed()) {
        terminal.error(L"standard output could not be written");
        status = kFileFailed;
    }
    return status;
}

ExitStatus runAtTerminal(const Options& options, Terminal& terminal) {
    const std::unique_ptr<ReplySource> replies = makeReplies(options, terminal);
    Application application(options, terminal);
    loadCommandModule(terminal, replies->isScript());
    application.open(openDrawing(options.drawing, options, application), *replies);
    checkLayout(options, *application.session()->document.database());
    setVariables(options, application.session()->variables);
    DialogLines dialogLines(*replies, terminal);
    const DialogUse dialogUse(options.windows, dialogLines);
    const ExitStatus status = CommandLoop(application).run();
    return finish(options, application, terminal, status);
}

// One drawing after the other in the same window.
ExitStatus runInWindow(const Options& options, Terminal& terminal) {
    ViewWindow window(options, makeScript(options, terminal), terminal);
    Application application(options, terminal);
    // However the run ends, the view lets go of the drawing before that goes.
    const std::unique_ptr<CanvasView, void (*)(CanvasView*)> shown(&window.view(),
                                                                   [](CanvasView* view) { view->showNothing(); });
    loadCommandModule(terminal, true);
    std::optional<CanvasView::Opened> opened{
        {openDrawing(options.drawing, options, application), options.drawing.value_or(std::wstring())}};
    window.view().useOpen([&options, &application](const std::wstring& name) {
        return openDrawing(name.empty() ? std::nullopt : std::optional(name), options, application);
    });
    ExitStatus status = kAllFinished;
    window.open();
    for (; opened; opened = window.view().takeOpened()) {
        window.view().showNothing();
        nameDrawing(opened->name);
        application.open(std::move(opened->database), window.view());
        if (status == kAllFinished) checkLayout(options, *application.session()->document.database());
        setVariables(options, application.session()->variables);
        if (opened->isUnsaved) application.session()->document.markUnsaved();
        window.view().show(application, opened->name);
        try {
            status = std::max(status, CommandLoop(application).run());
        } catch (...) {
            window.view().showNothing();  // its pictures take much of the memory that may be short
            if (window.leave(application.session()->document))
                terminal.error(L"what was not saved is kept aside; the next window offers it");
            throw;
        }
    }
    window.view().showNothing();
    return finish(options, application, terminal, status);
}

std::string helpText(const std::wstring& topic) {
    if (topic.empty()) return kUsage;
    const auto text = helpOn(topic);
    if (!text) throw UsageError("--help: there is no help on \"" + base::toUtf8(topic) + "\"");
    return base::toUtf8(*text);
}

ExitStatus run(const Options& options, Terminal& terminal) {
    checkOptions(options);
    if (options.windows) requireWindows();
    nameDrawing(options.drawing.value_or(std::wstring()));
    if (options.summary != Options::Summary::kNone) return summarize(options, terminal);
    return options.hasWindow() ? runInWindow(options, terminal) : runAtTerminal(options, terminal);
}

}  // namespace

int runProgram(const std::vector<std::string>& arguments) {
    Terminal terminal(false);
    const auto fail = [&terminal](const std::exception& error, ExitStatus status) {
        terminal.error(base::fromUtf8(error.what()));
        return status;
    };
    try {
        const Options options = parseOptions(arguments);
        if (options.help || options.version)
            return base::writeTo(base::Stream::kOutput, options.help ? helpText(options.helpTopic) : kVersion)
                       ? kAllFinished
                       : kFileFailed;
        terminal = Terminal(options.quiet);
        return run(options, terminal);
    } catch (const UsageError& error) {
        fail(error, kWrongUsage);
        terminal.show(L"Try torvelhost --help.\n");
        return kWrongUsage;
    } catch (const ScriptError& error) {
        return fail(error, kWrongUsage);
    } catch (const std::bad_alloc&) {
        endWithoutMemory();
        return kFileFailed;
    } catch (const std::exception& error) {
        // Files are all that can fail outside commands: the drawing's, the scripts', the settings'.
        return fail(error, kFileFailed);
    }
}

}  // namespace host

extern "C" int torvelhostMain(int count, char** arguments) {
    host::g_terminateBefore = std::set_terminate(host::endWithoutMemory);
    base::setUpConsole();
    return host::runProgram(base::commandLine(count, arguments));
}
