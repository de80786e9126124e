// Where the points of the canvas lie in the drawing, and back.
#pragma once

#include <optional>
#include <string>

#include "torvelhost/session/document_view.h"
#include "torvelhost/window/view_frame.h"

namespace host {

/// Of the view as it is now: of the active space, in a floating viewport as that one shows it.
class ViewMap {
  public:
    ViewMap(Document& document, DocumentView& view) : document_(document), view_(view) {}

    /// From the current space to pixels.
    OdGeMatrix3d toPixels();
    double pixelsPerUnit();

    /// The point of the user's plane that is seen there, as a line of a script: in digits finer than what can be seen,
    /// which read back exactly.
    std::wstring pointText(CanvasPoint at);
    /// Where that line is, in world coordinates. Nothing for a place beyond all points.
    std::optional<OdGePoint3d> pointOf(const std::wstring& text);
    std::optional<OdGePoint3d> pointAt(CanvasPoint at) { return pointOf(pointText(at)); }
    /// The same in the user coordinate system.
    OdGePoint3d userPointAt(CanvasPoint at);
    CanvasPoint placeOf(const OdGePoint3d& world);
    /// Of the paper around a viewport, or of the current space.
    OdGePoint2d currentSpacePointAt(CanvasPoint at);
    /// The floating viewport of the current layout that is seen there; of several, the smallest. Null: none.
    OdDbObjectId viewportAt(CanvasPoint at);

  private:
    Document& document_;
    DocumentView& view_;
};

}  // namespace host
