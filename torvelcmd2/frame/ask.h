// What the commands ask with: the user for points, entities, keywords and texts, the host for the drawing plane and for
// its variables. Where a host lacks the service that a question needs, the answer is a cancel or the standard value, so
// that no command has to look for it.
#pragma once

#include <type_traits>

#include "hostapi/input.h"
#include "hostapi/selection.h"
#include "hostapi/trackers.h"
#include "torvelcmd2/frame/command.h"
#include "torvelcmd2/frame/host_binding.h"

namespace torvel {

// ---- the user; each returns an input result of hostapi/input.h

/// With a rubber band from `base`, and what the tracker shows, when they are there.
int askPoint(HostEdInput& input, const OdString& prompt, OdGePoint3d& point, const OdGePoint3d* base = nullptr,
             HostEdInputTracker* tracker = nullptr, const OdString& keywords = {});
int askKeyword(HostEdInput& input, const OdString& prompt, const OdString& keywords);
/// Any text, unless it is one of the keywords.
int askText(HostEdInput& input, const OdString& prompt, OdString& text, const OdString& keywords = {});

/// One entity of the current space. kValue with a null entity: the pick met nothing.
int askEntity(const OdString& prompt, hostapi::Pick& pick, int flags = hostapi::kSingleEntity);
/// Any number of entities until Enter; kValue, also for none at all, or kCancel with `entities` empty.
int askSet(const OdString& prompt, OdDbObjectIdArray& entities);

// ---- the host

/// What was selected before the command.
OdDbObjectIdArray pickFirst();

/// Draws an entity again that changed without being written, or whose change was taken back.
void redraw(OdDbObjectId entity);
enum class Drawing { kAsItStands, kRegenerated };
void showDrawing(Drawing how);

/// The user coordinate system of the active space; maps its coordinates to the world's.
OdGeMatrix3d drawingPlane();

/// The normal of new text in the user coordinate system, and the rotation to store for one that is counted from its X
/// axis (radians).
struct TextOrientation {
    OdGeVector3d normal;
    double rotation;
};
TextOrientation textOrientation(double rotation, OdDbDatabase& database);

/// A system variable by one of the services of hostapi/services.h, which says of what kind it is.
template <class Value>
Value hostVariable(const hostapi::Service<bool(const wchar_t* name, Value& value)>& service, const wchar_t* name,
                   std::type_identity_t<Value> standard) {
    if (auto* const read = hostService(service)) read(name, standard);
    return standard;
}

}  // namespace torvel
