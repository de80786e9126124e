// EAttEdit: value, text options and properties of one reference's attributes in one dialog.
#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// Takes the reference that was selected before, or asks for one.
class EAttEditCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;

  protected:
    ~EAttEditCmd() = default;
};

}  // namespace torvel

/// Exported. One editing run on `blockRef`, with `attribute` (or null) current at first; where the reference has no
/// attributes the user is asked for another. Both ids follow when the user goes on to another reference. 0 after OK; 1
/// after Cancel, and when no reference was chosen.
extern "C" int doEAttEdit(OdDbObjectId& blockRef, OdDbObjectId& attribute);
