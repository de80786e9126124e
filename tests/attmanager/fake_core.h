// What the stand-in for the host's core library answers.
#pragma once

#include <cstdint>
#include <optional>

#include "drawingdb/color.h"

struct FakeCoreState {
    std::int64_t lineWeightUnits = 1;
    bool translates = false;          // "By Layer" becomes "Wie Layer"
    OdCmColor shownFirst;             // where the colour chooser began
    std::optional<OdCmColor> chosen;  // none: the chooser is cancelled
};
using FakeCoreStateFunction = FakeCoreState*();
