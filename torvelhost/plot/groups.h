// The groups of an object, for kinds that the database carries without understanding them.
#pragma once

#include <span>
#include <vector>

#include "drawingdb/color.h"
#include "drawingdb/ge.h"
#include "drawingdb/object.h"

namespace host {

/// A group as the file has it; a point is one group, angles (50 to 58) are radians, and a chunk is a text with a
/// character for each byte.
struct PlotGroup {
    int code = 0;
    double real = 0.0;
    std::int64_t integer = 0;
    OdGePoint3d point;
    OdString text;
    OdDbObjectId id;
};

/// In the order of the file; subclass markers (100) are among them, the object's own handle and its extended data too.
std::vector<PlotGroup> groupsOf(const OdDbObject& object);

/// A colour that is one number: a method above the red, green and blue, or a colour number.
OdCmColor colorOf(std::int64_t number);

/// The first with the code; null when there is none.
const PlotGroup* findGroup(std::span<const PlotGroup> groups, int code);
/// The same, or one that is all zero.
const PlotGroup& groupOrZero(std::span<const PlotGroup> groups, int code);
/// Not among groups that are gone behind the call.
const PlotGroup* findGroup(std::vector<PlotGroup>&& groups, int code) = delete;
const PlotGroup& groupOrZero(std::vector<PlotGroup>&& groups, int code) = delete;

}  // namespace host
