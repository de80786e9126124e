// Wipeout: a mask from a polygon drawn or from a closed polyline, and whether the frames of masks are shown.
#include "torvelcmd2/construction/wipeout.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "drawingdb/curves.h"
#include "drawingdb/layer_states.h"
#include "drawingdb/wipeout.h"
#include "hostapi/trackers.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

constexpr double kStraightBulge = 1e-10;

using OdDbPolylinePtr = OdSmartPtr<OdDbPolyline>;

OdDbPolyline::Vertex vertexAt(const OdDbPolyline& polyline, const OdGePoint3d& point) {
    OdDbPolyline::Vertex vertex;
    vertex.point = (OdGeMatrix3d::worldToPlane(polyline.normal()) * point).xy();
    return vertex;
}

// Moves one vertex of the boundary with the cursor.
class WipeoutBoundsTracker final : public HostEdPointTracker {
  public:
    WipeoutBoundsTracker(const OdDbPolylinePtr& boundary, std::size_t index)
        : HostEdPointTracker(boundary), boundary_(*boundary), index_(index) {}

    bool filterEvent(const HostInputEvent& event, const OdGePoint3d&) override {
        if (event.kind != HostInputEvent::kPointMoved) return false;
        update(event.cursor);
        return true;
    }
    void update(const OdGePoint3d& cursor) { boundary_.setVertexAt(index_, vertexAt(boundary_, cursor)); }

  private:
    OdDbPolyline& boundary_;
    std::size_t index_;
};

// ---- a wipeout from a polyline

bool isClosedAndStraight(const OdDbPolyline& polyline) {
    for (std::size_t i = 0; i < polyline.numVerts(); ++i)
        if (std::fabs(polyline.vertexAt(i).bulge) > kStraightBulge) return false;
    return polyline.isClosed() && polyline.numVerts() > 0;
}

std::vector<OdGePoint3d> cornersOf(const OdDbPolyline& polyline) {
    std::vector<OdGePoint3d> corners;
    for (std::size_t i = 0; i < polyline.numVerts(); ++i) corners.push_back(polyline.pointAt(i));
    corners.push_back(corners.front());
    return corners;
}

// False when the user cancels. What lies on a locked layer is not erased.
bool eraseIfWanted(HostEdInput& input, OdDbPolyline& polyline) {
    constexpr int kYes = hostapi::kFirstKeyword;
    const int result = askKeyword(input, loadText(IDS_ERASE_POLYLINE), loadText(IDS_YES_NO_KEYWORDS));
    if (result == kYes && !drawingdb::isOnLockedLayer(polyline)) {
        polyline.upgradeOpen();
        polyline.erase();
    }
    return result != hostapi::kCancel;
}

bool createWipeout(const RunFrame& frame, OdDbPolyline& polyline) {
    if (!isClosedAndStraight(polyline)) {
        // Between empty lines: the host ends each message with a line end of its own.
        frame.input->printMessage(L"\n%s\n", loadText(IDS_POLYLINE_MUST_BE_CLOSED).c_str());
        return false;
    }
    const std::vector<OdGePoint3d> corners = cornersOf(polyline);
    if (polyline.isDatabaseResident() && !eraseIfWanted(*frame.input, polyline)) return false;
    const auto wipeout = OdDbWipeout::createObject();
    wipeout->setDatabaseDefaults(frame.database.get());
    wipeout->setBoundary(corners);
    appendToSpace(targetSpaceId(*frame.database), *wipeout);
    return true;
}

// ---- polygon mode

// The polyline's elevation counts from the world's origin, wherever the user coordinate system has its own.
OdDbPolylinePtr beginBoundary(const OdGePoint3d& first) {
    auto boundary = OdDbPolyline::createObject();
    boundary->setNormal(drawingPlane().zAxis());
    boundary->setElevation(OdGePlane(OdGePoint3d::kOrigin, boundary->normal()).signedDistanceTo(first));
    boundary->setClosed(true);
    boundary->addVertexAt(0, vertexAt(*boundary, first));
    return boundary;
}

OdString polygonKeywords(std::size_t vertices) {
    if (vertices < 3) return {};
    return loadText(vertices == 3 ? IDS_WIPEOUT_UNDO_KEYWORD : IDS_WIPEOUT_UNDO_CLOSE_KEYWORDS);
}

void removeLastVertex(OdDbPolyline& boundary) { boundary.removeVertexAt(boundary.numVerts() - 1); }

// Takes back the vertex under the cursor and the one that was placed last.
void undoVertex(OdDbPolyline& boundary) {
    if (boundary.numVerts() > 2) removeLastVertex(boundary);
    removeLastVertex(boundary);
}

CMD_RUNSTATUS finishPolygon(const RunFrame& frame, OdDbPolyline& boundary) {
    removeLastVertex(boundary);
    createWipeout(frame, boundary);
    return kCommandFinished;
}

CMD_RUNSTATUS drawPolygon(const RunFrame& frame, const OdGePoint3d& first) {
    constexpr int kUndo = hostapi::kFirstKeyword;
    constexpr int kClose = hostapi::kFirstKeyword + 1;
    const OdDbPolylinePtr boundary = beginBoundary(first);
    const OdString prompt = loadText(IDS_SPECIFY_NEXT_POINT);
    for (;;) {
        const std::size_t index = boundary->numVerts();
        WipeoutBoundsTracker tracker(boundary, index);
        boundary->addVertexAt(index, index > 0 ? boundary->vertexAt(index - 1) : OdDbPolyline::Vertex());
        const OdGePoint3d last = boundary->pointAt(index);
        const OdString keywords = polygonKeywords(boundary->numVerts());
        OdGePoint3d point;
        switch (askPoint(*frame.input, prompt, point, &last, &tracker, keywords)) {
            case hostapi::kCancel:
                return kCommandCancelled;
            case hostapi::kValue:
                tracker.update(point);
                break;
            case hostapi::kEmpty:
                if (boundary->numVerts() == 2) {
                    printLine(loadText(IDS_POINT_OR_KEYWORD_REQUIRED));
                    removeLastVertex(*boundary);
                } else if (boundary->numVerts() > 3) {
                    return finishPolygon(frame, *boundary);
                }
                // Two points are no area: the vertex under the cursor stays where it is and becomes the third.
                break;
            case kUndo:
                undoVertex(*boundary);
                break;
            case kClose:
                return finishPolygon(frame, *boundary);
            default:
                return kCommandFinished;
        }
    }
}

// ---- polyline mode

CMD_RUNSTATUS maskPolyline(const RunFrame& frame) {
    hostapi::Pick pick;
    if (askEntity(loadText(IDS_SELECT_CLOSED_POLYLINE), pick) != hostapi::kValue) return kCommandCancelled;
    const auto polyline = pick.entity.openIf<OdDbPolyline>();
    return polyline && createWipeout(frame, *polyline) ? kCommandFinished : kCommandCancelled;
}

// ---- frames

void showFrames(OdDbDatabase& database, bool on) {
    OdDbWipeoutVariables::openForWrite(database)->setShowFrame(on);
    showDrawing(Drawing::kRegenerated);
}

CMD_RUNSTATUS switchFrames(const RunFrame& frame) {
    constexpr int kOn = hostapi::kFirstKeyword;
    constexpr int kOff = hostapi::kFirstKeyword + 1;
    const OdString on = loadText(IDS_FRAMES_ON), off = loadText(IDS_FRAMES_OFF);
    const OdString& current = OdDbWipeoutVariables::showsFrames(*frame.database) ? on : off;
    const OdString prompt = loadText(IDS_ENTER_MODE) + L" <" + current + L">";
    const int result = askKeyword(*frame.input, prompt, on + L" " + off);
    if (result == kOn || result == kOff)
        showFrames(*frame.database, result == kOn);
    else if (result != hostapi::kEmpty)
        return kCommandCancelled;
    return kCommandFinished;
}

}  // namespace

CMD_RUNSTATUS CWipeoutCmd::run() {
    constexpr int kFrames = hostapi::kFirstKeyword;
    constexpr int kPolyline = hostapi::kFirstKeyword + 1;
    setRunStatus(kCommandRunning);
    const RunFrame frame = reachDocument();
    OdGePoint3d first;
    switch (askPoint(*frame.input, loadText(IDS_WIPEOUT_START_POINT), first, nullptr, nullptr,
                     loadText(IDS_WIPEOUT_KEYWORDS))) {
        case hostapi::kValue:
            return setRunStatus(drawPolygon(frame, first));
        case kFrames:
            return setRunStatus(switchFrames(frame));
        case hostapi::kEmpty:
        case kPolyline:
            return setRunStatus(maskPolyline(frame));
        default:
            // Cancelling this first prompt, unlike the later ones, counts as a finished run.
            return setRunStatus(kCommandFinished);
    }
}

}  // namespace torvel
