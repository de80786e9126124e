#include "torvelcmd2/construction/ray.h"

#include "drawingdb/curves.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/frame/trackers.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

class RayTracker final : public ConstructionLineTracker {
  public:
    using ConstructionLineTracker::ConstructionLineTracker;
    void update(int, const OdGePoint3d& cursor) override { turnTowards(cursor); }
};

int askStartPoint(HostEdInput& input, OdGePoint3d& start) {
    // The host only looks at what kind of entity is coming.
    input.setCurrentEntity(hostapi::kNewEntity, OdDbRay::createObject().get());
    return askPoint(input, loadText(IDS_SPECIFY_START_POINT), start);
}

// One ray: asks for its through point and appends it. Returns the input result.
int placeRay(const RunFrame& frame, OdDbObjectId space, const OdGePoint3d& start, const OdString& prompt) {
    const OdSmartPtr<OdDbRay> ray = OdDbRay::createObject();
    ray->setDatabaseDefaults(frame.database.get());
    ray->setBasePoint(start);
    RayTracker tracker(ray);
    OdGePoint3d through;
    frame.input->setCurrentEntity(hostapi::kNewEntity, ray.get());
    const int result = askPoint(*frame.input, prompt, through, &start, &tracker);
    // A point on the start point gives no direction; it is passed over without a word.
    if (result == hostapi::kValue && !through.isEqualTo(start)) {
        ray->setUnitDir(through - start);
        appendToSpace(space, *ray);
    }
    return result;
}

}  // namespace

CMD_RUNSTATUS CRayCmd::run() {
    setRunStatus(kCommandRunning);
    const RunFrame frame = reachDocument();
    const OdDbObjectId space = targetSpaceId(*frame.database);
    OdGePoint3d start;
    int result = askStartPoint(*frame.input, start);
    const OdString throughPrompt = loadText(IDS_SPECIFY_THROUGH_POINT);
    while (result == hostapi::kValue) result = placeRay(frame, space, start, throughPrompt);
    return setRunStatus(statusOfInput(result));
}

}  // namespace torvel
