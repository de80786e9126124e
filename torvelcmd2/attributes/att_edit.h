#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "AttEdit": edits the attribute values of one reference in a dialog.
class AttEditCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;

  protected:
    ~AttEditCmd() = default;
};

}  // namespace torvel
