// Divide: points or references of a block at equal lengths along a curve.
#include "torvelcmd2/construction/divide.h"

#include <cmath>
#include <set>
#include <vector>

#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

constexpr int kFewestSegments = 2;
constexpr int kMostSegments = 32767;

// What is put on the curve. A null block means points.
struct Markers {
    int segments = kFewestSegments;
    OdDbObjectId block;
    bool aligned = false;
};

// Shows an object highlighted for as long as it lives.
class Highlight {
  public:
    explicit Highlight(OdDbObjectId object) : object_(object) { show(true); }
    ~Highlight() { show(false); }
    Highlight(const Highlight&) = delete;
    Highlight& operator=(const Highlight&) = delete;

  private:
    void show(bool on) const {
        if (auto* const highlight = hostService(hostapi::highlight)) highlight(object_, on);
    }
    OdDbObjectId object_;
};

OdDbObjectId selectObject() {
    hostapi::Pick pick;
    return askEntity(loadText(IDS_SELECT_OBJECT_TO_DIVIDE), pick) == hostapi::kValue ? pick.entity : OdDbObjectId();
}

// Asks until the number suits; anything that is no number is the caller's business. Enter means the fewest.
int askSegments(HostEdInput& input, int& segments, const wchar_t* keywords, unsigned refusal) {
    const OdString prompt = loadText(IDS_ENTER_NUMBER_OF_SEGMENTS);
    for (;;) {
        const int result = input.getInteger(segments, prompt.c_str(), keywords, hostapi::kPlainPrompt, 0);
        if (result == hostapi::kEmpty) segments = kFewestSegments;
        if (result != hostapi::kValue || (segments >= kFewestSegments && segments <= kMostSegments)) return result;
        printLine(loadText(refusal));
    }
}

// Whether a block shows another one, directly or through blocks in between; a block in itself would have no end.
bool showsBlock(OdDbObjectId block, OdDbObjectId shown) {
    std::set<OdDbObjectId> seen{shown};
    for (std::vector<OdDbObjectId> holders{shown}; !holders.empty();) {
        const OdDbObjectId holder = holders.back();
        holders.pop_back();
        if (holder == block) return true;
        for (OdDbObjectId reference : holder.openAs<OdDbBlockTableRecord>()->blockReferenceIds(false)) {
            const OdDbObjectId outer = reference.openAs<OdDbBlockReference>()->blockId();
            if (!outer.isNull() && seen.insert(outer).second) holders.push_back(outer);
        }
    }
    return false;
}

bool canInsertInto(OdDbObjectId space, OdDbObjectId block) {
    return block.isValid() && !block.openAs<OdDbBlockTableRecord>()->isLayout() && !showsBlock(block, space);
}

OdDbObjectId spaceOf(OdDbObjectId object) {
    const auto entity = object.openIf<OdDbEntity>();
    return entity ? entity->blockId() : OdDbObjectId();
}

int askBlock(const RunFrame& frame, OdDbObjectId space, OdDbObjectId& block) {
    const OdString prompt = loadText(IDS_ENTER_BLOCK_TO_INSERT);
    for (;;) {
        OdString name;
        const int result = askText(*frame.input, prompt, name);
        if (result == hostapi::kCancel) return result;
        block = frame.database->findBlock(name);
        if (canInsertInto(space, block)) return result;
        frame.input->printMessage(loadText(IDS_CANNOT_FIND_BLOCK).c_str(), name.c_str());
    }
}

int askAligned(HostEdInput& input, bool& aligned) {
    constexpr int kYes = hostapi::kFirstKeyword;
    const int result = askKeyword(input, loadText(IDS_ALIGN_BLOCK_WITH_OBJECT), loadText(IDS_YES_NO_KEYWORDS));
    aligned = result == kYes;
    return result;
}

// False when the user cancels.
bool askMarkers(const RunFrame& frame, OdDbObjectId space, Markers& markers) {
    constexpr int kBlock = hostapi::kFirstKeyword;
    int result = askSegments(*frame.input, markers.segments, loadText(IDS_DIVIDE_BLOCK_KEYWORD).c_str(),
                             IDS_SEGMENTS_RANGE_OR_KEYWORD);
    if (result == kBlock) {
        result = askBlock(frame, space, markers.block);
        if (result != hostapi::kCancel) result = askAligned(*frame.input, markers.aligned);
        if (result != hostapi::kCancel)
            result = askSegments(*frame.input, markers.segments, nullptr, IDS_SEGMENTS_RANGE);
    }
    return result != hostapi::kCancel;
}

// Where a curve is divided, and its first derivatives there.
struct Divisions {
    std::vector<OdGePoint3d> points;
    std::vector<OdGeVector3d> derivatives;
};

// The ends of an open curve are not marked; a closed one is marked where it starts.
Divisions divide(const OdDbCurve& curve, int segments) {
    const double start = curve.distAtParam(curve.startParam());
    const double step = (curve.distAtParam(curve.endParam()) - start) / segments;
    Divisions divisions;
    for (int i = curve.isClosed() ? 0 : 1; i < segments; ++i) {
        const double parameter = curve.paramAtDist(start + i * step);
        divisions.points.push_back(curve.pointAtParam(parameter));
        divisions.derivatives.push_back(curve.firstDerivAtParam(parameter));
    }
    return divisions;
}

OdDbEntityPtr makePoint(OdDbDatabase& database, const OdGePoint3d& position) {
    const auto point = OdDbPoint::createObject();
    point->setDatabaseDefaults(&database);
    point->setPosition(position);
    return point;
}

OdDbEntityPtr makeReference(OdDbDatabase& database, const Markers& markers, const OdGePoint3d& position,
                            const OdGeVector3d& derivative) {
    const auto reference = OdDbBlockReference::createObject();
    reference->setDatabaseDefaults(&database);
    reference->setBlockTableRecord(markers.block);
    reference->setPosition(position);
    if (markers.aligned) reference->setRotation(OdGeVector3d::kXAxis.angleTo(derivative, OdGeVector3d::kZAxis));
    return reference;
}

// Where the curve lies, which need not be the current space.
void placeMarkers(OdDbDatabase& database, OdDbObjectId space, const Divisions& divisions, const Markers& markers) {
    const auto block = space.openAs<OdDbBlockTableRecord>(OdDb::forWrite);
    for (std::size_t i = 0; i < divisions.points.size(); ++i) {
        const OdDbEntityPtr marker =
            markers.block.isNull() ? makePoint(database, divisions.points[i])
                                   : makeReference(database, markers, divisions.points[i], divisions.derivatives[i]);
        block->appendOdDbEntity(marker.get());
    }
}

// False for what has no length to divide, infinite lines among them.
bool divideObject(OdDbDatabase& database, OdDbObjectId object, const Markers& markers) {
    const auto curve = object.openIf<OdDbCurve>();
    if (!curve || !std::isfinite(curve->startParam()) || !std::isfinite(curve->endParam())) {
        printLine(loadText(IDS_CANNOT_DIVIDE_OBJECT));
        return false;
    }
    placeMarkers(database, curve->blockId(), divide(*curve, markers.segments), markers);
    return true;
}

}  // namespace

CMD_RUNSTATUS CDivideCmd::run() {
    setRunStatus(kCommandRunning);
    const RunFrame frame = reachDocument();
    const OdDbObjectId object = selectObject();
    if (!object.isValid()) return setRunStatus(kCommandCancelled);
    const Highlight highlight(object);
    Markers markers;
    const bool done = askMarkers(frame, spaceOf(object), markers) && divideObject(*frame.database, object, markers);
    return setRunStatus(done ? kCommandFinished : kCommandCancelled);
}

}  // namespace torvel
