#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "Ray": draws rays from one start point through any number of points.
class CRayCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
