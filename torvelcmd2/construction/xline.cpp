// XLINE: infinite lines through a point, along the axes, at an angle, halving an angle, beside a line. Each mode asks
// its own questions once, then places line after line.
#include "torvelcmd2/construction/xline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/curves.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/frame/trackers.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

constexpr double kStraightBulge = 1e-10;
constexpr double kSideTolerance = 1e-10;
constexpr double kEdgeOn = 1e-9;  // sine of the angle between a plane and the direction it is seen in

using OdDbXlinePtr = OdSmartPtr<OdDbXline>;

// The mode is the reply to the first prompt: a point, or one of its keywords.
enum Mode : int {
    kThroughPoints = hostapi::kValue,
    kHorizontal = hostapi::kFirstKeyword,
    kVertical,
    kAngle,
    kBisect,
    kOffset,
};

// The last offset, remembered from run to run for as long as the module is loaded.
struct OffsetMemory {
    double distance = 0.0;
    bool through = true;  // "Through" was chosen last; the default before anything was
};
OffsetMemory offsetMemory;

// ---- trackers

// Along a fixed direction through the cursor; without one, through the base point and the cursor.
class CXlineTracker : public ConstructionLineTracker {
  public:
    explicit CXlineTracker(const OdDbXlinePtr& xline, const OdGeVector3d& direction = OdGeVector3d::kIdentity)
        : ConstructionLineTracker(xline), direction_(direction) {}

    void update(int, const OdGePoint3d& cursor) override {
        if (direction_.isZeroLength()) {
            turnTowards(cursor);
            return;
        }
        constructionLine().setBasePoint(cursor);
        constructionLine().setUnitDir(direction_.normal());
    }

  private:
    OdGeVector3d direction_;
};

class CHorXlineTracker final : public CXlineTracker {
  public:
    using CXlineTracker::CXlineTracker;
};

class CVertXlineTracker final : public CXlineTracker {
  public:
    using CXlineTracker::CXlineTracker;
};

// Moves a line whose direction is settled.
class CAngXlineTracker final : public CXlineTracker {
  public:
    using CXlineTracker::CXlineTracker;
    void update(int, const OdGePoint3d& cursor) override { constructionLine().setBasePoint(cursor); }
};

// Halves the angle between a start point and the cursor, with the line's base point as its vertex.
class CBisXlineTracker final : public CXlineTracker {
  public:
    CBisXlineTracker(const OdDbXlinePtr& xline, const OdGePoint3d& start) : CXlineTracker(xline), start_(start) {}

    void update(int, const OdGePoint3d& cursor) override {
        const OdGePoint3d vertex = constructionLine().basePoint();
        if (cursor.isEqualTo(vertex)) return;
        const OdGeVector3d bisector = ((start_ - vertex).normal() + (cursor - vertex).normal()) * 0.5;
        // A straight angle has its bisectors all around; the direction stays.
        if (!bisector.isZeroLength()) constructionLine().setUnitDir(bisector);
    }

  private:
    OdGePoint3d start_;
};

// ---- directions in the user coordinate system

OdGeVector3d xAxis() { return hostVariable(hostapi::getVectorVariable, L"UCSXDIR", OdGeVector3d::kXAxis); }
OdGeVector3d yAxis() { return hostVariable(hostapi::getVectorVariable, L"UCSYDIR", OdGeVector3d::kYAxis); }

OdGeVector3d drawingNormal() { return xAxis().crossProduct(yAxis()).normal(); }

OdGeVector3d directionAt(double angle) {
    return xAxis().normal() * std::cos(angle) + yAxis().normal() * std::sin(angle);
}
double angleOf(const OdGeVector3d& direction) {
    return OdGeVector2d(direction.dotProduct(xAxis().normal()), direction.dotProduct(yAxis().normal())).angle();
}

// In the drawing's units; as a plain number where the host has no service for them.
OdString lengthText(double length) {
    constexpr int kDrawingsOwn = -1;
    OdString text;
    auto* const realToText = hostService(hostapi::realToText);
    if (!realToText || !realToText(length, kDrawingsOwn, kDrawingsOwn, text))
        text = base::widen(base::realToText(length));
    return text;
}

// ---- picking a line

struct PickedLine {
    OdGePoint3d base;
    OdGeVector3d direction;
};

double distanceTo(const OdGePoint2d& point, const OdGePoint2d& from, const OdGePoint2d& to) {
    const OdGeVector2d along = to - from;
    const double length2 = along.lengthSquared();
    const double foot = length2 > 0 ? std::clamp((point - from).dotProduct(along) / length2, 0.0, 1.0) : 0.0;
    return point.distanceTo(from + along * foot);
}

// The point in the plane that is seen where `point` is, from above; beside it when the plane is seen from its edge.
OdGePoint2d inPlane(const OdGeMatrix3d& toPlane, double elevation, const OdGePoint3d& point) {
    const OdGePoint3d there = toPlane * point;
    const OdGeVector3d down = toPlane * OdGeVector3d::kZAxis;
    if (std::fabs(down.z) < kEdgeOn) return there.xy();
    return (there + down * ((elevation - there.z) / down.z)).xy();
}

// In the polyline's own plane. Arcs count too: who picks an arc does not mean the segment beside it.
std::size_t nearestSegment(const OdDbPolyline& polyline, const OdGePoint3d& point) {
    constexpr int kChords = 32;
    const OdGeMatrix3d toPlane = OdGeMatrix3d::worldToPlane(polyline.normal());
    const OdGePoint2d picked = inPlane(toPlane, polyline.elevation(), point);
    std::size_t nearest = 0;
    double least = std::numeric_limits<double>::infinity();
    const auto count = static_cast<std::size_t>(polyline.endParam());
    for (std::size_t i = 0; i < count; ++i) {
        const int chords = std::fabs(polyline.vertexAt(i).bulge) < kStraightBulge ? 1 : kChords;
        for (int k = 0; k < chords; ++k) {
            const auto at = [&](int step) {
                return (toPlane * polyline.pointAtParam(static_cast<double>(i) + static_cast<double>(step) / chords))
                    .xy();
            };
            const double distance = distanceTo(picked, at(k), at(k + 1));
            if (distance < least) {
                least = distance;
                nearest = i;
            }
        }
    }
    return nearest;
}

std::optional<PickedLine> straightSegment(const OdDbPolyline& polyline, const OdGePoint3d& point) {
    if (polyline.endParam() < 1) return std::nullopt;
    const std::size_t index = nearestSegment(polyline, point);
    if (std::fabs(polyline.vertexAt(index).bulge) > kStraightBulge) return std::nullopt;
    const OdGePoint3d start = polyline.pointAt(index);
    return PickedLine{start, polyline.pointAt((index + 1) % polyline.numVerts()) - start};
}

std::optional<PickedLine> usableLine(const hostapi::Pick& pick) {
    std::optional<PickedLine> line;
    if (const auto segment = pick.entity.openIf<OdDbLine>())
        line = PickedLine{segment->startPoint(), segment->endPoint() - segment->startPoint()};
    else if (const auto infinite = pick.entity.openIf<OdDbConstructionLine>())
        line = PickedLine{infinite->basePoint(), infinite->unitDir()};
    else if (const auto polyline = pick.entity.openIf<OdDbPolyline>())
        line = straightSegment(*polyline, pick.point);
    // Along the drawing plane's normal it has neither an angle nor a side.
    if (line &&
        (line->direction.isZeroLength() || line->direction.normal().crossProduct(drawingNormal()).length() < kEdgeOn))
        line.reset();
    return line;
}

// Asks until a pick suits; returns the input result, kValue with a line that has a direction.
int selectLine(PickedLine& line) {
    const OdString prompt = loadText(IDS_SELECT_LINE_OBJECT);
    for (int flags = hostapi::kSingleEntity;; flags = hostapi::kSingleEntity | hostapi::kRetry) {
        hostapi::Pick pick;
        const int result = askEntity(prompt, pick, flags);
        if (result != hostapi::kValue) return result;
        if (const auto usable = usableLine(pick)) {
            line = *usable;
            return result;
        }
        printLine(loadText(IDS_NO_USABLE_OBJECT));
    }
}

// ---- one run

// What one pass came to: the input result that decides whether there is another, or nothing when the run has failed.
using PassResult = std::optional<int>;
constexpr PassResult kRunFailed = std::nullopt;

// One run in one mode. A pass gets a new line and places it by the mode's rules; it may put another line, or none, in
// its place. The first pass of a mode asks its one-time questions.
class XlineRun {
  public:
    XlineRun(const RunFrame& frame, int mode, const OdGePoint3d& start)
        : database_(*frame.database), input_(*frame.input), mode_(mode), start_(start) {}

    CMD_RUNSTATUS run() {
        for (;;) {
            OdDbXlinePtr xline = OdDbXline::createObject();
            xline->setDatabaseDefaults(&database_);
            input_.setCurrentEntity(hostapi::kNoEntity, nullptr);
            const PassResult result = pass(xline);
            if (result == kRunFailed) return kCommandCancelled;
            if (result != hostapi::kValue) return kCommandFinished;
            if (xline) appendToSpace(targetSpaceId(database_), *xline);
            firstPass_ = false;
        }
    }

  private:
    PassResult pass(OdDbXlinePtr& xline) {
        switch (mode_) {
            case kThroughPoints:
                return throughStartPoint(xline);
            case kHorizontal:
                return along<CHorXlineTracker>(xline, xAxis());
            case kVertical:
                return along<CVertXlineTracker>(xline, yAxis());
            case kAngle:
                return atAngle(xline);
            case kBisect:
                return bisecting(xline);
            case kOffset:
                return besideLine(xline);
            default:
                return kRunFailed;
        }
    }

    // What the tracker last showed is not relied on: it gets the final point once more.
    int placeThrough(CXlineTracker& tracker, const OdGePoint3d* base = nullptr) {
        OdGePoint3d point;
        const int result = askPoint(input_, loadText(IDS_SPECIFY_THROUGH_POINT), point, base, &tracker);
        if (result == hostapi::kValue) tracker.update(0, point);
        return result;
    }

    // All lines of the run go through the same start point.
    PassResult throughStartPoint(const OdDbXlinePtr& xline) {
        input_.setCurrentEntity(hostapi::kNewEntity, xline.get());
        xline->setBasePoint(start_);
        CXlineTracker tracker(xline);
        return placeThrough(tracker, &start_);
    }

    template <class Tracker>
    PassResult along(const OdDbXlinePtr& xline, const OdGeVector3d& direction) {
        Tracker tracker(xline, direction);
        return placeThrough(tracker);
    }

    PassResult atAngle(const OdDbXlinePtr& xline) {
        if (firstPass_ && !askAngle()) return kRunFailed;
        if (base_) xline->setBasePoint(*base_);
        const int result = placeAtAngle(xline, angle_);
        base_ = xline->basePoint();
        return result;
    }
    int placeAtAngle(const OdDbXlinePtr& xline, double angle) {
        const OdGeVector3d direction = directionAt(angle);
        xline->setUnitDir(direction);
        CAngXlineTracker tracker(xline, direction);
        return placeThrough(tracker);
    }
    bool askAngle() {
        constexpr int kReference = hostapi::kFirstKeyword;
        const OdString prompt = loadText(IDS_ENTER_XLINE_ANGLE);
        int result = input_.getAngle(angle_, prompt.c_str(), loadText(IDS_XLINE_REFERENCE_KEYWORD).c_str(),
                                     hostapi::kPlainPrompt, 0);
        if (result != kReference) return result != hostapi::kCancel;
        PickedLine reference;
        if (selectLine(reference) != hostapi::kValue) return false;
        result = input_.getAngle(angle_, prompt.c_str(), nullptr, hostapi::kPlainPrompt, 0);
        angle_ += angleOf(reference.direction);
        return result != hostapi::kCancel;
    }

    PassResult bisecting(const OdDbXlinePtr& xline) {
        if (firstPass_ &&
            (askPoint(input_, loadText(IDS_SPECIFY_ANGLE_VERTEX), vertex_) != hostapi::kValue ||
             askPoint(input_, loadText(IDS_SPECIFY_ANGLE_START), angleStart_, &vertex_) != hostapi::kValue))
            return kRunFailed;
        xline->setBasePoint(vertex_);
        CBisXlineTracker tracker(xline, angleStart_);
        OdGePoint3d end;
        const int result = askPoint(input_, loadText(IDS_SPECIFY_ANGLE_END), end, &vertex_, &tracker);
        // Whatever the result; a line that is not appended takes no harm.
        tracker.update(0, end);
        return result;
    }

    PassResult besideLine(OdDbXlinePtr& xline) {
        if (firstPass_ && !askOffset()) return kRunFailed;
        PickedLine picked;
        const int result = selectLine(picked);
        if (result != hostapi::kValue) return result;
        xline->setBasePoint(picked.base);
        if (offsetMemory.through) return placeAtAngle(xline, angleOf(picked.direction));
        xline->setUnitDir(picked.direction);
        return offsetToSide(xline);
    }
    bool askOffset() {
        constexpr int kThrough = hostapi::kFirstKeyword;
        const OdString through = loadText(IDS_XLINE_THROUGH_KEYWORD);
        const OdString standard = offsetMemory.through ? through : lengthText(offsetMemory.distance);
        const OdString prompt = loadText(IDS_SPECIFY_OFFSET_DISTANCE) + L"<" + standard + L">";
        const int result = input_.getDistance(nullptr, offsetMemory.distance, prompt.c_str(), through.c_str(),
                                              hostapi::kPlainPrompt | hostapi::kNotNegative, 0);
        if (result == kThrough) offsetMemory.through = true;
        if (result == hostapi::kValue) offsetMemory.through = false;
        return result != hostapi::kCancel;
    }
    // To the left of the line, seen against the drawing plane's normal, is the positive side.
    PassResult offsetToSide(OdDbXlinePtr& xline) {
        OdGePoint3d side;
        const int result = askPoint(input_, loadText(IDS_SPECIFY_SIDE_TO_OFFSET), side);
        if (result == hostapi::kEmpty || result == hostapi::kCancel) return kRunFailed;
        const OdGeVector3d normal = drawingNormal();
        const double turn = xline->unitDir().crossProduct(side - xline->basePoint()).dotProduct(normal);
        const double distance = turn < -kSideTolerance ? -offsetMemory.distance : offsetMemory.distance;
        std::vector<OdDbCurvePtr> offsets;
        xline->getOffsetCurves(distance, normal, offsets);
        xline = offsets.empty() ? OdDbXlinePtr() : OdDbXlinePtr::cast(offsets.front());
        return result;
    }

    OdDbDatabase& database_;
    HostEdInput& input_;
    const int mode_;
    const OdGePoint3d start_;
    bool firstPass_ = true;
    double angle_ = 0;
    std::optional<OdGePoint3d> base_;  // of the line drawn at the angle before
    OdGePoint3d vertex_, angleStart_;
};

}  // namespace

CMD_RUNSTATUS CXLineCmd::run() {
    setRunStatus(kCommandRunning);
    const RunFrame frame = reachDocument();
    OdGePoint3d start;
    const int mode = askPoint(*frame.input, loadText(IDS_SPECIFY_START_POINT), start, nullptr, nullptr,
                              loadText(IDS_XLINE_KEYWORDS));
    // Any reply that is no mode, Enter too, counts as a cancelled run.
    if (mode != kThroughPoints && (mode < kHorizontal || mode > kOffset)) return setRunStatus(kCommandCancelled);
    return setRunStatus(XlineRun(frame, mode, start).run());
}

}  // namespace torvel
