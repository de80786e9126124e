#include "torvelhost/commands/command_loop.h"

#include <algorithm>
#include <memory>
#include <new>

#include "base/files.h"
#include "base/text.h"
#include "torvelhost/commands/double_click.h"
#include "torvelhost/commands/host_commands.h"
#include "torvelhost/lines/help_text.h"
#include "torvelhost/lines/progress.h"

namespace host {
namespace {

struct CommandReleaser {
    void operator()(ICmdProcess* command) const { command->release(); }
};
using CommandReference = std::unique_ptr<ICmdProcess, CommandReleaser>;

CMD_RUNSTATUS runOnce(const RegisteredCommand& registered) {
    ICmdProcess* created = nullptr;
    registered.creator(&created);
    if (!created) throw std::bad_alloc();
    const CommandReference command(created);
    command->run();
    return command->runStatus();
}

std::vector<std::wstring> commandNames() {
    std::vector<std::wstring> names = hostCommandNames();
    for (std::wstring& name : CommandFactory::instance().names()) names.push_back(std::move(name));
    names.insert(names.end(), {L"QUIT", L"help ", std::wstring(kDoubleClickName) + L" "});
    return names;
}

}  // namespace

ExitStatus CommandLoop::run() {
    for (;;) {
        ReplySource& replies = session_.input.replies();
        const std::optional<std::wstring> line = replies.next({L"Command: ", {Expected::kCommand}, commandNames});
        if (!line || (replies.wantsToLeave() && mayLeave()) || !runLine(parseReply(*line))) return status_;
    }
}

// Ctrl+C at the command prompt.
bool CommandLoop::mayLeave() {
    if (!session_.document.isModified()) return true;
    return session_.input.getKeyword(L"The changes are not saved. Leave without them? [%s] <No>", L"Yes No", 0, 0, 0) ==
           hostapi::kFirstKeyword;
}

bool CommandLoop::runLine(const Reply& reply) {
    if (reply.kind == Reply::kCancel) session_.selection.setPickFirst(OdDbObjectIdArray());
    if (reply.kind != Reply::kText) return true;
    const std::wstring& text = reply.text;
    if (base::equalsNoCase(text, L"QUIT")) return false;
    const std::size_t blank = text.find(L' ');
    const std::wstring_view word = std::wstring_view(text).substr(0, blank);
    if (word == L"?" || base::equalsNoCase(word, L"help")) {
        showHelp(base::trimmed(std::wstring_view(text).substr(word.size())));
        return true;
    }
    if (blank != text.npos && base::equalsNoCase(word, kDoubleClickName)) {
        doubleClick(base::trimmed(std::wstring_view(text).substr(blank)));
        return true;
    }
    if (const HostCommand* command = findHostCommand(text)) {
        commands::HostRun run{application_, session_};
        runCommand(command->name, [&] { return command->body(run); },
                   {.usesPickFirst = command->usesPickFirst(), .isForUndo = command->isForUndo()});
        if (command->changesView()) application_.refresh();
    } else if (const RegisteredCommand* registered = CommandFactory::instance().find(text)) {
        runRegistered(*registered);
    } else {
        std::wstring reason;
        if (!session_.selection.setPickFirst(reply, reason))
            refuse(!reason.empty()          ? reason
                   : text.starts_with(L'#') ? L"\"" + text + L"\" is no line of handles"
                                            : L"unknown command \"" + text + L"\"");
    }
    return true;
}

void CommandLoop::showHelp(std::wstring_view topic) {
    if (topic.empty()) return terminal_.print(helpOverview());
    const auto text = helpOn(topic);
    if (!text) return refuse(L"there is no help on \"" + std::wstring(topic) + L"\"");
    terminal_.print(base::trimmed(*text));
}

void CommandLoop::doubleClick(std::wstring_view where) {
    std::wstring reason = L"\"" + std::wstring(where) + L"\" is no pick";
    std::optional<hostapi::Pick> pick = session_.selection.pickByText(where, reason);
    if (!pick) return refuse(reason);
    commands::HostRun run{application_, session_};
    if (const Body edit = editorOf(*pick, run)) return runCommand(kDoubleClickName, edit, {});
    const RegisteredCommand* registered = CommandFactory::instance().find(kInPlaceCommand);
    if (!registered) return refuse(L"no command is there for a double click");
    session_.selection.setStartingPick(std::move(pick));
    runRegistered(*registered);
}

void CommandLoop::refuse(const std::wstring& what) {
    session_.input.replies().refused(what);
    terminal_.error(what);
}

void CommandLoop::runRegistered(const RegisteredCommand& registered) {
    runCommand(
        registered.name, [&] { return runOnce(registered); },
        {.usesPickFirst = (registered.flags & hostapi::kUsesPickFirst) != 0});
}

// The lines that were meant for the command must not be taken for commands, so this ends a script.
void CommandLoop::endForMemory(const std::wstring& command) {
    const std::wstring& fileName = session_.document.database()->fileName();
    const base::FileError error(
        fileName.empty() ? L"the new drawing" : fileName,
        L"there is not enough memory for the command " + command + L"; the drawing is as it was before it");
    if (session_.input.replies().isScript()) throw error;
    terminal_.error(base::fromUtf8(error.what()));
    status_ = std::max(status_, kFileFailed);
}

void CommandLoop::tellChanges(const std::wstring& name, std::size_t position) {
    if (!terminal_.isSeen()) return;
    if (const std::size_t count = session_.document.database()->objectsChangedSince(position))
        terminal_.notice(name + L": " + std::to_wstring(count) + (count == 1 ? L" object" : L" objects") + L" changed");
}

void CommandLoop::runCommand(const std::wstring& name, const Body& body, Manner manner) {
    const std::size_t position = session_.document.undoPosition();
    const auto takeBack = [&] {
        session_.document.database()->undoTo(position);
        session_.selection.endCommand();
        session_.command.clear();
    };
    const auto fail = [&](const std::wstring& what, ExitStatus status = kSomeFailed) {
        takeBack();
        terminal_.error(name + L": " + what);
        status_ = std::max(status_, status);
    };
    session_.selection.beginCommand(manner.usesPickFirst);
    session_.command = name;
    try {
        const Progress progress(terminal_, name);
        if (body() != kCommandFinished) status_ = std::max(status_, kSomeFailed);
        session_.document.undoPosition();  // throws when a change could not be stored
    } catch (const ScriptError&) {
        takeBack();
        throw;
    } catch (const std::bad_alloc&) {
        takeBack();
        return endForMemory(name);
    } catch (const base::FileError& error) {
        return fail(base::fromUtf8(error.what()), kFileFailed);
    } catch (const OdError& error) {
        return fail(base::fromUtf8(error.what()), error.code() == OdResult::fileError ? kFileFailed : kSomeFailed);
    } catch (const std::exception& error) {
        return fail(base::fromUtf8(error.what()));
    } catch (...) {
        return fail(L"ended by an exception of an unknown kind");
    }
    session_.command.clear();
    session_.selection.endCommand();
    if (manner.isForUndo) {
        tellChanges(name, position);
        session_.document.keepForUndo(name, position);
    }
    try {
        application_.profile().save();
    } catch (const base::FileError& error) {
        terminal_.warning(base::fromUtf8(error.what()));
    }
}

}  // namespace host
