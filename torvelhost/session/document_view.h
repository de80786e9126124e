// What is seen of a document: the view of each space, what its floating viewports show, and the views before.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "torvelhost/session/document.h"

namespace host {

/// What is seen of a space, from above. Lengths are drawing units of that space.
struct View {
    OdGePoint2d center;
    double height = 1.0;

    bool operator==(const View&) const = default;
};

class DocumentView {
  public:
    /// `width` and `height` are the view's size in pixels. The document is referenced.
    DocumentView(Document& document, int width, int height);
    DocumentView(const DocumentView&) = delete;
    DocumentView& operator=(const DocumentView&) = delete;

    int width() const { return width_; }
    int height() const { return height_; }
    /// What is seen keeps its scale and its middle.
    void setSize(int width, int height);

    /// Of the current space: of the active one, but inside a floating viewport of the paper space around it.
    View current();
    void set(const View& view);
    /// The same by hand, in small steps: all of them together are one view that is gone back behind.
    void move(const View& view);
    /// The drawing is first shown so: there is no view before this one.
    void begin(const View& view);
    /// All there is now.
    View whole();
    /// Whether a command, or a hand, set the view of the current space.
    bool isChosen() const;
    /// What a plot shows: the view that was set, or all there is now.
    View toPlot();

    /// What zooming changes: inside a floating viewport, what that shows, a part of the drawing like any other; else
    /// the view.
    View zoomed();
    void setZoomed(const View& view);
    /// False when there was none.
    bool setPrevious();
    /// The box in the coordinates that the zoomed view is counted in.
    OdGeExtents3d seenInZoomed(const OdGeExtents3d& box) const;
    /// The zoomed view that shows such a box.
    View zoomedOn(const OdGeExtents3d& seen) const;

    /// The whole of what can be seen of the active space; nothing when it is empty.
    std::optional<OdGeExtents3d> extents() const;
    /// The length in the active space that a pixel covers.
    double pixelSize();

  private:
    View showing(const OdGeExtents3d& box) const { return showing(box, aspect()); }
    static View showing(const OdGeExtents3d& box, double aspect);
    void keep(std::vector<View>& views, const View& view);
    double aspect() const { return static_cast<double>(width_) / height_; }
    OdDbObjectId currentSpaceId() const { return document_.database()->currentSpaceId(); }

    Document& document_;
    int width_, height_;
    /// Of a space the last one is shown; of a floating viewport they are those before the one it shows.
    std::map<OdDbObjectId, std::vector<View>> views_;
    OdDbObjectId moved_;  // the space whose view was moved by hand last
};

}  // namespace host
