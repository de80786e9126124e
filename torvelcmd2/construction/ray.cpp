#include "torvelcmd2/construction/ray.h"

#include "drawingdb/curves.h"
#include "torvelcmd2/frame/trackers.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

constexpr int kPointFlags = 4;
constexpr int kNewEntity = 1;

class RayTracker final : public ConstructionLineTracker {
  public:
    using ConstructionLineTracker::ConstructionLineTracker;
    void update(int, const OdGePoint3d& cursor) override { turnTowards(cursor); }
};

int askStartPoint(HostEdInput& input, OdGePoint3d& start) {
    // The host only looks at what kind of entity is coming.
    input.setCurrentEntity(kNewEntity, OdDbRay::createObject().get());
    return input.getPoint(nullptr, start, loadText(IDS_SPECIFY_START_POINT).c_str(), nullptr, kPointFlags, 0, nullptr);
}

// One ray: asks for its through point and appends it. Returns the input result.
int placeRay(const RunFrame& frame, OdDbObjectId space, const OdGePoint3d& start, const OdString& prompt) {
    const OdSmartPtr<OdDbRay> ray = OdDbRay::createObject();
    ray->setDatabaseDefaults(frame.database.get());
    ray->setBasePoint(start);
    RayTracker tracker(ray);
    OdGePoint3d through;
    frame.input->setCurrentEntity(kNewEntity, ray.get());
    const int result = frame.input->getPoint(&start, through, prompt.c_str(), nullptr, kPointFlags, 0, &tracker);
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
