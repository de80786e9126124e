// What a stand-in for the host's core library answers, and what it was told. Several lists of exports make hosts of it
// that offer more or less.
#pragma once

#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "hostapi/services.h"

struct FakeServices {
    hostapi::HostFunction (*hostFunction)(int id) = nullptr;  // what modules find the application by
    int interfaceVersion = hostapi::kInterfaceVersion;
    std::deque<OdDbObjectIdArray> sets;              // none left: the selection is cancelled
    std::deque<std::optional<hostapi::Pick>> picks;  // the same, also for nested ones; nothing is Enter
    std::optional<hostapi::Pick> currentPick;        // that made the host start the command
    std::int64_t attipe = 0;                         // the variable
    std::uint64_t stepsAllowed = std::numeric_limits<std::uint64_t>::max();  // progress beyond it stops

    std::vector<std::wstring> notices;
    std::vector<int> pickFlags;
    std::vector<OdDbObjectId> redrawn;
};
/// The one function that every such library exports beside those of its list.
using FakeServicesFunction = FakeServices*();
inline constexpr char kFakeServices[] = "fakeServices";
