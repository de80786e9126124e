#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "Divide": puts points or block references on a curve, at equal lengths.
class CDivideCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
