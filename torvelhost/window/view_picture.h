// The picture in the canvas: the drawing as the view shows it, exact, or moved while the view is; what is selected,
// under the cursor or following it; and what is drawn over all.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "torvelhost/lines/terminal.h"
#include "torvelhost/plot/scene.h"
#include "torvelhost/session/application.h"
#include "torvelhost/window/overlay.h"
#include "torvelhost/window/view_map.h"

namespace host {

class ViewPicture {
  public:
    /// The terminal is told once for each drawing what its first picture lacks.
    ViewPicture(ViewFrame& frame, Terminal& terminal) : frame_(frame), terminal_(terminal) {}

    /// The drawing that is shown from now on; null: none. Its database must live as long.
    void show(Application* application);
    void resize(int width, int height);

    /// All there is in the current space, also when the canvas gets another size.
    void tellSize();
    void showWhole();

    /// Looks at the drawing again: to be called with nothing open for write.
    void update();
    /// What stands out in it. The entities of the preview may lie in no drawing.
    struct Marks {
        std::vector<OdDbObjectId> selected;
        OdDbObjectId hover;
        std::vector<OdDbEntity*> preview;
        bool operator==(const Marks&) const = default;
    };
    void setMarks(Marks marks);
    /// The preview looks different, though it is of the same entities.
    void previewChanged() { isShown_ = false; }
    void setOverlay(const Overlay& overlay);
    /// The prompt is answered: its preview is gone, and what followed the cursor.
    void forgetCursor();

    /// Works at the exact picture as long as that delays nobody, and shows what there is.
    void work();
    /// When work() has more to do; nothing: when something has happened.
    std::optional<std::int64_t> dueAt() const { return due_; }
    /// The user does something with the view: the exact picture waits for him.
    void disturb();
    /// Works until the exact picture is there.
    void finish();

    const PixelBuffer& shown() const { return shown_; }

  private:
    /// What a picture is of.
    struct Seen {
        OdDbObjectId space, viewport;
        View view;
        bool operator==(const Seen&) const = default;
    };
    Seen seenNow();
    void begin(const Seen& seen);
    void drawPaper(const OdGeMatrix3d& toPixels);
    bool build(std::optional<std::int64_t> until);
    void mark();
    void moveTo(const Seen& seen);
    void present();
    bool isExact();
    std::vector<OdSmartPtr<OdDbEntity>> opened(const std::vector<OdDbObjectId>& ids) const;

    ViewFrame& frame_;
    Terminal& terminal_;
    bool isTold_ = false;
    Application* application_ = nullptr;
    std::optional<Scene> scene_;
    int width_ = 0, height_ = 0;

    PixelBuffer building_;            // the exact picture that is being made
    std::optional<Seen> buildingOf_;  // of what; nothing: none is
    PixelBuffer exact_;               // the last one
    std::optional<Seen> exactOf_;     // of what
    PixelBuffer marked_;              // that with what is selected
    PixelBuffer moved_;               // that, where the view has moved since
    PixelBuffer shown_;               // all together
    std::optional<Seen> shownOf_;
    std::optional<Seen> whole_;  // the view that shows all there is
    bool stale_ = true;          // the drawing has changed since the exact picture
    bool isMarked_ = false, isShown_ = false;
    std::int64_t cost_ = 0;       // milliseconds of the last exact picture
    std::int64_t spent_ = 0;      // of the one that is being made
    std::int64_t disturbed_ = 0;  // when the user moved the view last
    std::optional<std::int64_t> due_;
    std::set<OdDbObjectId> hidden_;
    const Picture* slide_ = nullptr;
    Marks marks_;
    Overlay overlay_;
};

}  // namespace host
