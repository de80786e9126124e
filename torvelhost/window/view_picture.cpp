// The picture in the canvas, in layers: exact, marked, moved, shown; each is made of the one before when that has
// changed.
#include "torvelhost/window/view_picture.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawingdb/block.h"
#include "torvelhost/plot/sheet.h"
#include "torvelhost/plot/style.h"
#include "torvelhost/plot/thin_lines.h"

namespace host {
namespace {

constexpr std::int64_t kQuick = 10;  // milliseconds that nobody notices
constexpr std::int64_t kPause = 40;  // without anything done, after which the user looks
constexpr std::chrono::milliseconds kSlice{5};
constexpr std::uint32_t kPaperEdge = 0xB0B0B0;

}  // namespace

void ViewPicture::show(Application* application) {
    application_ = application;
    scene_.reset();
    buildingOf_.reset();
    exactOf_.reset();
    whole_.reset();
    hidden_.clear();
    marks_ = {};
    slide_ = nullptr;
    stale_ = true;
    isShown_ = isTold_ = false;
    if (!application) return;
    scene_.emplace(application->session()->document.grids());
    if (width_ > 0) tellSize();
    showWhole();
}

void ViewPicture::tellSize() {
    application_->session()->view.setSize(width_, height_);
    application_->slideView()->setSize(width_, height_);
}

void ViewPicture::showWhole() {
    DocumentView& view = application_->session()->view;
    view.begin(view.whole());
    whole_ = seenNow();
}

void ViewPicture::resize(int width, int height) {
    width_ = std::max(width, 1);
    height_ = std::max(height, 1);
    if (application_) {
        // What showed all there is goes on to do so: windows take their size in steps while they open.
        const bool isWhole = whole_ && *whole_ == seenNow();
        tellSize();
        if (isWhole) showWhole();
    }
    buildingOf_.reset();
    exactOf_.reset();
    isShown_ = false;
}

void ViewPicture::update() {
    if (!scene_) return;
    if (scene_->update()) stale_ = true;
    const std::set<OdDbObjectId>& hidden = application_->session()->selection.hidden();
    if (hidden != hidden_) {
        for (OdDbObjectId id : hidden_) scene_->hide(id, false);
        for (OdDbObjectId id : hidden) scene_->hide(id, true);
        hidden_ = hidden;
        stale_ = true;
    }
    if (const Picture* const slide = application_->slideView()->slide(); slide != slide_) {
        slide_ = slide;
        stale_ = true;
    }
}

void ViewPicture::setMarks(Marks marks) {
    if (marks == marks_) return;
    if (marks.selected != marks_.selected) isMarked_ = false;
    marks_ = std::move(marks);
    isShown_ = false;
}

void ViewPicture::setOverlay(const Overlay& overlay) {
    if (overlay == overlay_) return;
    overlay_ = overlay;
    isShown_ = false;
}

void ViewPicture::forgetCursor() {
    marks_.preview.clear();
    marks_.hover = OdDbObjectId();
    overlay_ = {};
}

void ViewPicture::disturb() { disturbed_ = frame_.now(); }

ViewPicture::Seen ViewPicture::seenNow() {
    Application::Session& session = *application_->session();
    return {session.document.database()->currentSpaceId(), session.document.floatingViewportId(),
            session.view.current()};
}

bool ViewPicture::isExact() { return exactOf_ && !stale_ && !buildingOf_ && *exactOf_ == seenNow(); }

void ViewPicture::begin(const Seen& seen) {
    Application::Session& session = *application_->session();
    ViewMap map(session.document, session.view);
    building_.width = width_;
    building_.height = height_;
    building_.pixels.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
    scene_->begin(seen.space, map.toPixels(), map.pixelsPerUnit(), building_);
    drawPaper(map.toPixels());
    buildingOf_ = seen;
    stale_ = false;
    spent_ = 0;
}

// The edge of a layout's paper, below all that is on it.
void ViewPicture::drawPaper(const OdGeMatrix3d& toPixels) {
    auto paper = paperEdge(*application_->session()->document.database());
    if (!paper) return;
    paper->transformBy(toPixels);
    const auto inPicture = [](double pixel) { return static_cast<float>(std::clamp(pixel, -1e6, 1e6)); };
    const float left = inPicture(paper->minPoint().x), right = inPicture(paper->maxPoint().x);
    const float top = inPicture(paper->minPoint().y), bottom = inPicture(paper->maxPoint().y);
    const Picture::Point edge[] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}, {left, top}};
    ThinLines lines;
    lines.attach(building_.pixels.data(), building_.width, building_.height);
    lines.draw(edge, 1.0, kPaperEdge);
}

// True when the picture is finished.
bool ViewPicture::build(std::optional<std::int64_t> until) {
    const std::int64_t start = frame_.now();
    bool finished = false;
    do {
        finished = scene_->continueFor(kSlice);
    } while (!finished && (!until || frame_.now() < *until));
    spent_ += frame_.now() - start;
    if (!finished) return false;
    if (slide_) {
        building_.clear(width_, height_, slide_->background());
        Painter().paint(*slide_, building_);
    }
    std::swap(exact_, building_);
    exactOf_ = buildingOf_;
    buildingOf_.reset();
    cost_ = spent_;
    isMarked_ = isShown_ = false;
    if (!std::exchange(isTold_, true))
        for (const std::wstring& text : scene_->told()) terminal_.warning(text);
    return true;
}

void ViewPicture::work() {
    due_.reset();
    if (!scene_ || width_ == 0) return;
    const Seen seen = seenNow();
    const std::int64_t now = frame_.now();
    const bool wanted = stale_ || (buildingOf_ ? !(*buildingOf_ == seen) : !exactOf_ || !(*exactOf_ == seen));
    if (wanted) {
        // Begun at once where that is quick or nothing better can be shown, else when the user pauses.
        const std::int64_t pause = disturbed_ + kPause;
        if (cost_ < kQuick || !exactOf_ || now >= pause)
            begin(seen);
        else
            due_ = pause;
    }
    if (buildingOf_ && *buildingOf_ == seen) {
        if (!build(now + kQuick)) {
            due_ = frame_.now();
            frame_.setProgress(scene_->progress());
        } else if (cost_ >= kQuick) {
            frame_.setProgress(-1);
        }
    }
    if (!isShown_ || !shownOf_ || !(*shownOf_ == seen)) present();
}

void ViewPicture::finish() {
    if (!scene_ || width_ == 0) return;
    if (!isExact()) {
        begin(seenNow());
        build(std::nullopt);
        frame_.setProgress(-1);
    }
    due_.reset();
    if (!isShown_ || !shownOf_ || !(*shownOf_ == seenNow())) present();
}

std::vector<OdSmartPtr<OdDbEntity>> ViewPicture::opened(const std::vector<OdDbObjectId>& ids) const {
    std::vector<OdSmartPtr<OdDbEntity>> entities;
    entities.reserve(ids.size());
    for (OdDbObjectId id : ids)
        if (id.isValid())
            if (auto entity = id.openIf<OdDbEntity>()) entities.push_back(std::move(entity));
    return entities;
}

// The exact picture with what is selected.
void ViewPicture::mark() {
    if (isMarked_) return;
    marked_ = exact_;
    // What is drawn over lies where the picture begun last has it.
    if (buildingOf_) return;
    isMarked_ = true;
    if (marks_.selected.empty() || slide_) return;
    const auto entities = opened(marks_.selected);
    std::vector<const OdDbEntity*> selected;
    selected.reserve(entities.size());
    for (const auto& entity : entities) selected.push_back(entity.get());
    scene_->drawOver(selected, Emphasis::kSelected, marked_, exactOf_->viewport);
}

// The last picture as it would lie in another view: each pixel shows what lay in its middle.
void ViewPicture::moveTo(const Seen& seen) {
    moved_.clear(width_, height_, Styles::kBackground);
    if (!exactOf_ || exactOf_->space != seen.space || marked_.width != width_ || marked_.height != height_) return;
    const View from = exactOf_->view, to = seen.view;
    const double scale = to.height / from.height;  // pixels of the old picture for one of the new
    const double pixels = height_ / from.height;
    const double left = width_ / 2.0 - width_ / 2.0 * scale + (to.center.x - from.center.x) * pixels;
    const double top = height_ / 2.0 - height_ / 2.0 * scale - (to.center.y - from.center.y) * pixels;
    const auto source = [scale](double begin, int i) {
        return static_cast<int>(std::floor(std::clamp(begin + (i + 0.5) * scale, -1.0, 1e6)));
    };
    std::vector<int> columns(static_cast<std::size_t>(width_));
    for (int x = 0; x < width_; ++x) columns[static_cast<std::size_t>(x)] = source(left, x);
    const auto inside = [&](int x) { return x >= 0 && x < width_; };
    const auto first = std::find_if(columns.begin(), columns.end(), inside) - columns.begin();
    const auto last = std::find_if_not(columns.begin() + first, columns.end(), inside) - columns.begin();
    for (int y = 0; y < height_; ++y) {
        const int row = source(top, y);
        if (row < 0 || row >= height_) continue;
        const std::uint32_t* const old =
            marked_.pixels.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(width_);
        std::uint32_t* const pixel =
            moved_.pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
        for (auto x = first; x < last; ++x) pixel[x] = old[columns[static_cast<std::size_t>(x)]];
    }
}

void ViewPicture::present() {
    const bool exact = isExact();
    if (exactOf_) mark();
    if (exact) {
        shown_ = marked_;
        if (!slide_) {
            const auto hover = opened({marks_.hover});
            if (!hover.empty()) {
                const OdDbEntity* const entity = hover.front().get();
                scene_->drawOver({&entity, 1}, Emphasis::kHover, shown_, exactOf_->viewport);
            }
            const std::vector<const OdDbEntity*> preview(marks_.preview.begin(), marks_.preview.end());
            if (!preview.empty()) scene_->drawOver(preview, Emphasis::kPlain, shown_, exactOf_->viewport);
        }
    } else {
        moveTo(seenNow());
        std::swap(shown_, moved_);
    }
    overlay_.draw(shown_);
    frame_.showPicture(shown_);
    shownOf_ = seenNow();
    isShown_ = true;
}

}  // namespace host
