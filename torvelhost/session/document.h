// An open drawing: its database, its coordinate system, what its view shows, and the commands that can be undone.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "drawingdb/database.h"
#include "hostapi/application.h"
#include "torvelhost/lines/reply.h"

namespace host {

/// What is seen of a space, from above. Lengths are drawing units of that space.
struct View {
    OdGePoint2d center;
    double height = 1.0;
};

/// No coordinate or distance that is typed lies beyond; squares and cubes of it are finite.
constexpr double kFarthest = 1e100;

class Document final : public HostDocument {
  public:
    /// `width` and `height` are the view's size in pixels.
    Document(OdDbDatabasePtr database, int width, int height);
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    OdDbDatabase* database() override { return database_.get(); }
    HostEdInput* input() override { return input_; }
    void setInput(HostEdInput* input) { input_ = input; }

    /// ---- where the user draws
    /// Model space, also through a floating viewport, or the current layout's paper space.
    OdDbObjectId activeSpaceId() const;
    bool isModelSpaceActive() const;
    /// The floating viewport that was entered; null when there is none.
    OdDbObjectId floatingViewportId() const;
    /// The floating viewports of the current layout, by number.
    std::vector<OdDbObjectId> floatingViewports() const;

    /// ---- coordinates
    /// From the user coordinate system of the active space to the world.
    OdGeMatrix3d ucs() const;
    /// Its axes must be unit vectors at right angles.
    void setUcs(const OdGeMatrix3d& toWorld);
    /// The Z of points that are typed without one.
    double elevation() const;
    const char* elevationName() const { return isModelSpaceActive() ? "$ELEVATION" : "$PELEVATION"; }
    /// Relative points count from the last one. Points so far away that the geometry could not be worked out are
    /// refused.
    std::optional<OdGePoint3d> toWorld(const TypedPoint& point, std::wstring& reason) const;
    OdGePoint3d lastPoint() const { return lastPoint_; }
    void setLastPoint(const OdGePoint3d& point) { lastPoint_ = point; }

    /// ---- the view
    /// Of the active space; inside a floating viewport, of the paper space around it.
    View view();
    void setView(const View& view);
    /// What zooming changes: inside a floating viewport, what that shows, a part of the drawing like any other; else
    /// the view.
    View zoomedView();
    void setZoomedView(const View& view);
    /// False when there was none.
    bool setPreviousView();
    /// The box in the coordinates that the zoomed view is counted in.
    OdGeExtents3d seenInZoomedView(const OdGeExtents3d& box) const;
    /// The zoomed view that shows such a box.
    View zoomedViewOf(const OdGeExtents3d& seen) const;
    /// The whole of what can be seen of the active space; nothing when it is empty.
    std::optional<OdGeExtents3d> extents() const;
    /// The view that shows this box.
    View viewOf(const OdGeExtents3d& box) const { return viewOf(box, viewAspect()); }
    /// What a plot shows: the view that was set, or all there is now.
    View viewToPlot();
    int width() const { return width_; }
    int height() const { return height_; }
    double viewAspect() const { return static_cast<double>(width_) / height_; }
    /// The length in the active space that a pixel covers.
    double pixelSize();

    /// Throws base::FileError when the file cannot be written, or when the drawing was opened for reading alone.
    void save(const std::wstring& path);

    /// ---- undo, a whole command at a time
    std::size_t undoPosition() { return database_->undoPosition(); }
    /// After a command that began at this position.
    void keepForUndo(const std::wstring& command, std::size_t position);
    /// Takes back the last command that changed something and returns its name.
    std::optional<std::wstring> undoCommand();

  private:
    struct Done {
        std::wstring command;
        std::size_t position;
    };
    OdDbObjectId viewedSpaceId() const;
    static View viewOf(const OdGeExtents3d& box, double aspect);
    static void keep(std::vector<View>& views, const View& view);

    OdDbDatabasePtr database_;
    HostEdInput* input_ = nullptr;
    int width_, height_;
    OdGePoint3d lastPoint_;
    /// Of a space the last one is shown; of a floating viewport they are those before the one it shows.
    std::map<OdDbObjectId, std::vector<View>> views_;
    std::vector<Done> done_;
};

}  // namespace host
