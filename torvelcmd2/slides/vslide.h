#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// "VSlide": shows a slide in the current view, until the next regeneration.
class VSlideCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;
};

}  // namespace torvel
