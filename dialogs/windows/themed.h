// Windows of the system in its present look, whatever the program's own manifest says.
#pragma once

#include <windows.h>

namespace dialogs {

/// While one lives, windows that are made have common controls 6: the library's manifest asks for them.
class Themed {
  public:
    Themed();
    ~Themed();
    Themed(const Themed&) = delete;
    Themed& operator=(const Themed&) = delete;

  private:
    ULONG_PTR cookie_ = 0;
};

}  // namespace dialogs
