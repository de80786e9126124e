// Trackers that turn a construction line while a point is asked for.
#pragma once

#include "drawingdb/curves.h"
#include "hostapi/trackers.h"

namespace torvel {

/// A tracker of a ray or an infinite line: every move of the cursor is handed to update(), which the command calls once
/// more with the point that was given in the end.
class ConstructionLineTracker : public HostEdPointTracker {
  public:
    explicit ConstructionLineTracker(const OdSmartPtr<OdDbConstructionLine>& constructionLine)
        : HostEdPointTracker(constructionLine) {}

    bool filterEvent(const HostInputEvent& event, const OdGePoint3d&) override {
        if (event.kind != HostInputEvent::kPointMoved) return false;
        update(0, event.cursor);
        return true;
    }

    bool cursorKind(std::int32_t& kind) override {
        kind = 4;
        return true;
    }

    /// Slot 6. The first argument has no meaning.
    virtual void update(int ignored, const OdGePoint3d& cursor) = 0;

  protected:
    ~ConstructionLineTracker() = default;

    OdDbConstructionLine& constructionLine() const { return static_cast<OdDbConstructionLine&>(*entity()); }

    /// Turns the line about its base point through the cursor; a cursor on the base point changes nothing.
    void turnTowards(const OdGePoint3d& cursor) {
        const OdGePoint3d base = constructionLine().basePoint();
        if (!cursor.isEqualTo(base)) constructionLine().setUnitDir(cursor - base);
    }
};

}  // namespace torvel
