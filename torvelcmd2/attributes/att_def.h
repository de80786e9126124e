#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "Attdef": asks in a dialog what the definition is to be, and for its place with a preview.
class CAttdefCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
