// Windows of the system in its present look, whatever the program's own manifest says.
#pragma once

#include <windows.h>

#include "dialogs/api.h"

namespace dialogs {

/// While one lives, windows that are made have common controls 6: the library's manifest asks for them.
class DIALOGS_API Themed {
  public:
    Themed();
    ~Themed();
    Themed(const Themed&) = delete;
    Themed& operator=(const Themed&) = delete;

  private:
    ULONG_PTR cookie_ = 0;
};

}  // namespace dialogs
