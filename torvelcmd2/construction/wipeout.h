#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "Wipeout": masks an area given by a polygon or a closed polyline, or switches the frames of all masks.
class CWipeoutCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
