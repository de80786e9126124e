// ATTIPedit and ATTIPeditW: edit the text of one attribute in its place in the drawing.
#pragma once

#include "torvelcmd2/frame/command.h"

namespace torvel {

/// Takes an attribute that was selected before, or asks for one.
class ATTIPeditCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;

  protected:
    ~ATTIPeditCmd() = default;
};

/// Takes the pick that made the host start it; never asks.
class ATTIPeditWCmd : public CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override;

  protected:
    ~ATTIPeditWCmd() = default;
};

}  // namespace torvel
