#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "Burst": replaces block references by the geometry and the texts that they show.
class BurstCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
