// BAttMan: the Block Attribute Manager.
#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

class BAttManCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
