// A command of the host's own: what its body works on, and how it asks and refuses.
#pragma once

#include <string>
#include <string_view>

#include "hostapi/command.h"
#include "torvelhost/session/application.h"

namespace host::commands {

using hostapi::kCancel;
using hostapi::kEmpty;
using hostapi::kFirstKeyword;
using hostapi::kValue;

/// One run of one command.
struct HostRun {
    Application& application;
    Application::Session& session;
    Document& document = session.document;
    OdDbDatabase* const database = document.database();
    DocumentView& view = session.view;
    Input& input = session.input;
    Variables& variables = session.variables;

    Terminal& terminal() const { return input.terminal(); }
    /// Says why the command does nothing, and is its status.
    CMD_RUNSTATUS refused(const std::wstring& why) const;
    /// A length in any form of units; an input result.
    int askNumber(const wchar_t* prompt, double& number) const;
};

using HostCommandBody = CMD_RUNSTATUS (*)(HostRun& run);

/// The status of a run whose last question gave that result.
inline CMD_RUNSTATUS statusOf(int inputResult) { return inputResult == kCancel ? kCommandCancelled : kCommandFinished; }

bool isInteger(const Reply& reply);
/// Whether a layer, a block or the like may be called so.
bool isRecordName(std::wstring_view name);
/// Why a block cannot be called so, or nothing.
std::wstring blockNameRefusal(const OdDbDatabase& database, const OdString& name);
/// Asks before a block that is there is made anew; Enter is No.
bool asksToRedefine(HostRun& run, const OdString& name);

}  // namespace host::commands
