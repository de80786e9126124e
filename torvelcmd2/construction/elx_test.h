#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "ElxTest": reads one text and echoes it, to try the text input of a host.
class TestCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
