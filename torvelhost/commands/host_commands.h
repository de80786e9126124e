// The host's own commands; their prompts are in docs/scripts.md.
#pragma once

#include "hostapi/command.h"
#include "torvelhost/session/application.h"

namespace host {

inline constexpr const wchar_t kUndoCommand[] = L"UNDO";

/// The bodies, one run each.
struct HostCommands {
    Application& application;
    Application::Session& session;

    CMD_RUNSTATUS undo();
    CMD_RUNSTATUS zoom();
    CMD_RUNSTATUS regen();
    CMD_RUNSTATUS layer();
    CMD_RUNSTATUS ucs();
    CMD_RUNSTATUS insert();
    CMD_RUNSTATUS setVariable();
    CMD_RUNSTATUS layout();
    CMD_RUNSTATUS enterViewport();
    CMD_RUNSTATUS leaveViewport();
    CMD_RUNSTATUS save();

  private:
    int askNumber(const wchar_t* prompt, double& number);
    CMD_RUNSTATUS refused(const std::wstring& why);
    void changeLayers(int option);
    void addLayer(const OdString& name);
    bool fillAttributes(OdDbObjectId reference, OdDbObjectId block);
};

struct HostCommand {
    const wchar_t* name;
    CMD_RUNSTATUS (HostCommands::*body)();
    bool changesView = false;  // it shows the drawing anew, so that a slide goes
};
/// In any case; null when there is none.
const HostCommand* findHostCommand(std::wstring_view name);

}  // namespace host
