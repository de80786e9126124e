// Picks: what an entity selection returns.
#pragma once

#include <cstddef>
#include <vector>

#include "drawingdb/ge.h"
#include "drawingdb/object_id.h"

namespace hostapi {

/// Flags of an entity selection; others are the host's business and have no effect.
constexpr int kSingleEntity = 8192;
constexpr int kRetry = 0x4000;  ///< the question is asked again after a pick that did not suit

/// An entity picked on screen, and what lay under the cursor inside it.
struct Pick {
    OdDbObjectId entity;    ///< the entity of the current space; null when the pick met nothing
    OdGePoint3d point;      ///< world coordinates; where the cursor was
    bool hasPoint = false;  ///< false when the entity was named and no point was given
    OdDbObjectId nested;    ///< the innermost object under the cursor; `entity` itself when it has no parts
    std::vector<OdDbObjectId> containers;  ///< the references that hold `nested`, outermost first
    bool isExact = false;                  ///< `nested` was named: nothing else that lies at the point is meant
};

}  // namespace hostapi

/// Judges the candidates of a nested pick.
class HostGsSelectionReactor {
  public:
    /// Slot 0. One candidate with the references that hold it, outermost first. True takes it and ends the pick; false
    /// goes on to the next candidate.
    virtual bool selected(OdDbObjectId entity, const OdDbObjectId* containers, std::size_t containerCount) = 0;

  protected:
    ~HostGsSelectionReactor() = default;
};
