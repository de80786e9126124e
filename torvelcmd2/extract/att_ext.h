// AttExt: writes attribute values and block properties of selected references to a file.
#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

class AttExtCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;

  protected:
    ~AttExtCmd() = default;
};

}  // namespace torvel
