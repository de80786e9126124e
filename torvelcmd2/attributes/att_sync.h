#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "AttSync": brings the references of one block in the current space in line with the block's attribute definitions.
class CAttSyncCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
