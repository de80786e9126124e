// The picture of a space that is looked at: kept up to date while the drawing changes, made anew for every view.
//
// It shows what a plot shows: the same shapes in the same order, on white paper.
#pragma once

#include <chrono>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "drawingdb/database.h"
#include "torvelhost/plot/entity_grid.h"
#include "torvelhost/plot/painter.h"
#include "torvelhost/plot/style.h"

namespace host {

class Scene {
  public:
    /// The database is referenced.
    explicit Scene(OdDbDatabase& database);
    /// With the grids of those who pick in the drawing. They are referenced.
    explicit Scene(EntityGrids& grids);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Takes in what changed in the drawing since the last call. To be called with nothing open for write. True when
    /// the picture may change by it.
    bool update();

    /// Begins the exact picture of a space: `toPixels` maps its coordinates to pixels of a canvas as large as the
    /// buffer, y down; `pixelsPerUnit` is the scale that linetypes are drawn in. The buffer is filled with paper at
    /// once; it is referenced until the picture is finished or another is begun. What changed is taken in before.
    void begin(OdDbObjectId space, const OdGeMatrix3d& toPixels, double pixelsPerUnit, PixelBuffer& into);
    /// Goes on with it for about that long; true when it is finished. The drawing must not change in between: when
    /// update() says so a picture is begun anew.
    bool continueFor(std::chrono::milliseconds slice);
    /// Of the picture that was begun last: from 0 to 1.
    double progress() const;
    /// What a plot would say of pictures and fonts that were missing so far.
    std::vector<std::wstring> told() const;
    /// What is kept between pictures, without the grids.
    std::size_t bytes() const;

    /// Entities of a space that are not shown while they are hidden: moved in a preview.
    void hide(OdDbObjectId entity, bool hidden);

    /// Draws entities, also ones in no drawing (previews of trackers), over a finished picture of the view that was
    /// begun last; with a floating viewport of its space, as they are seen through that one.
    void drawOver(std::span<const OdDbEntity* const> entities, Emphasis emphasis, PixelBuffer& into,
                  OdDbObjectId viewport = {});

  private:
    class Engine;
    std::unique_ptr<EntityGrids> own_;  // unless they are given
    std::unique_ptr<Engine> engine_;
};

}  // namespace host
