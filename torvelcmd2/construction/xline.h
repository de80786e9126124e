#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "XLINE": draws infinite lines through points, at angles, bisecting angles, or parallel to lines.
class CXLineCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
