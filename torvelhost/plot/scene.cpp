// What entities show is worked out once for each power of two of the scale, and kept as long as nothing of it changes:
// the entities' own lists here, those of blocks in the plotter. A picture draws the lists of the entities that the grid
// finds in it, and is painted slice by slice.
#include "torvelhost/plot/scene.h"

#include <cmath>
#include <limits>
#include <map>
#include <optional>

#include "drawingdb/block.h"
#include "drawingdb/viewport.h"
#include "torvelhost/plot/plotter.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;
using Entry = EntityGrid::Entry;

// More is not kept: a drawing of a million references has to fit beside it.
constexpr std::size_t kMostBytes = 192 << 20;
// An entity that reaches farther than the picture by that much is drawn as far as it is seen, and not kept.
constexpr double kLarge = 3;

}  // namespace

class Scene::Engine {
  public:
    explicit Engine(EntityGrids& grids)
        : grids_(grids), mark_(grids.database()), plotter_(grids.database(), picture_, &grids.blocks()) {
        numbering_ = grids.numbering();
    }

    bool update();
    void begin(OdDbObjectId space, const OdGeMatrix3d& toPixels, double pixelsPerUnit, PixelBuffer& into);
    bool continueUntil(Clock::time_point end);
    double progress() const;
    std::size_t bytes() const { return bytes_ + plotter_.bytes(); }
    std::vector<std::wstring> told() const {
        std::vector<std::wstring> told = plotter_.rasters().told();
        for (std::wstring& text : plotter_.oddLetters().told()) told.push_back(std::move(text));
        return told;
    }
    void drawOver(std::span<const OdDbEntity* const> entities, Emphasis emphasis, PixelBuffer& into,
                  OdDbObjectId viewport);

    std::unordered_set<OdDbObjectId> hidden;

  private:
    /// What the entities of a grid show, at one size, with one set of layers.
    struct Lists {
        struct Range {
            std::uint32_t first = 0, count = kUnknown;  // items
        };
        static constexpr std::uint32_t kUnknown = ~0u;
        DisplayList list;
        std::vector<Range> ranges;  // by the numbers of entries
        std::size_t unused = 0;     // items
        std::uint64_t used = 0;     // when it was
    };
    struct Key {
        OdDbObjectId space;
        int size;
        std::size_t frozen;
        // NOLINTNEXTLINE(modernize-use-nullptr): takes the zero that comparisons are made with for a pointer.
        auto operator<=>(const Key&) const = default;
    };
    /// A stretch of the picture: entities of a space, in their order; behind it a viewport's frame.
    struct Part {
        Plotter::Pass pass;
        OdDbObjectId space;
        std::vector<const Entry*> entries;
        bool isViewport = false;
    };

    bool makeGrids(Clock::time_point end);
    void makeParts();
    std::vector<const Entry*> entriesSeen(OdDbObjectId space);
    void enterPart();
    void draw(const Entry& entry);
    void paint();
    void forgetLists();
    void makeRoom(const Lists& kept);
    void dropList(std::map<Key, Lists>::iterator lists);
    std::size_t bytesOf(const Lists& lists) const {
        return lists.list.bytes() + lists.ranges.capacity() * sizeof(Lists::Range);
    }

    EntityGrids& grids_;
    OdDbTouchMark mark_;
    Picture picture_{1, 1, Styles::kBackground};
    Plotter plotter_;
    Painter painter_;
    std::uint64_t numbering_ = 0, updates_ = 0;  // of the grids

    std::map<Key, Lists> lists_;
    std::size_t bytes_ = 0;
    std::uint64_t pictures_ = 0;

    // The picture that is being made.
    enum class Stage { kFinished, kGrids, kParts };
    Stage stage_ = Stage::kFinished;
    OdDbObjectId space_;
    Plotter::Pass pass_;
    PixelBuffer* into_ = nullptr;
    double gridsMade_ = 0;
    bool begunWithGrids_ = false;  // they take as long as the rest
    std::vector<Part> parts_;
    std::size_t part_ = 0, entry_ = 0;
    // Of the part that is being drawn.
    EntityGrid* grid_ = nullptr;
    Lists* current_ = nullptr;
    std::optional<Rectangle> window_;
};

// ---- what changed

void Scene::Engine::forgetLists() {
    lists_.clear();
    bytes_ = 0;
    plotter_.forgetAllLists();
}

bool Scene::Engine::update() {
    grids_.update();
    const bool otherFonts = plotter_.lettersAnew();
    if (otherFonts) forgetLists();
    const OdDbTouched touched = grids_.database().takeTouched(mark_);
    if (touched.empty()) return otherFonts;
    bool everything = false, looks = false, any = !touched.entities.empty() || touched.header;
    if (std::exchange(numbering_, grids_.numbering()) != grids_.numbering()) everything = true;
    for (const OdDbObjectId id : touched.others) {
        const EntityGrids::Concern concern = EntityGrids::concernOf(id);
        everything |= concern == EntityGrids::Concern::kEverything;
        looks |= concern == EntityGrids::Concern::kLooks;
        any |= concern != EntityGrids::Concern::kNothing;
    }
    if (!any) return otherFonts;
    stage_ = Stage::kFinished;
    plotter_.readVariables();
    if (looks || everything) {
        plotter_.readStyles();
        forgetLists();
        return true;
    }
    std::unordered_set<OdDbObjectId> blocks;
    for (const OdDbObjectId id : touched.entities) {
        const OdDbObjectId block = id.containerId();
        bool isSpace = false;
        for (auto lists = lists_.lower_bound({block, std::numeric_limits<int>::min(), 0});
             lists != lists_.end() && lists->first.space == block; ++lists) {
            isSpace = true;
            const EntityGrid::Index index = grids_.of(block).indexOf(id);
            if (index >= lists->second.ranges.size()) continue;
            Lists::Range& range = lists->second.ranges[index];
            if (range.count != Lists::kUnknown) lists->second.unused += range.count;
            range = {};
        }
        if (!isSpace) blocks.insert(block);
    }
    if (!blocks.empty()) plotter_.forget(blocks);
    for (auto lists = lists_.begin(); lists != lists_.end();) {
        const auto next = std::next(lists);
        if (lists->second.unused > 1000 + lists->second.list.items().size() / 2) dropList(lists);
        lists = next;
    }
    return true;
}

// ---- room

void Scene::Engine::dropList(std::map<Key, Lists>::iterator lists) {
    bytes_ -= bytesOf(lists->second);
    lists_.erase(lists);
}

// What was used longest ago goes first.
void Scene::Engine::makeRoom(const Lists& kept) {
    while (bytes_ > kMostBytes && lists_.size() > 1) {
        auto oldest = lists_.end();
        for (auto lists = lists_.begin(); lists != lists_.end(); ++lists)
            if (&lists->second != &kept && (oldest == lists_.end() || lists->second.used < oldest->second.used))
                oldest = lists;
        dropList(oldest);
    }
}

// ---- a picture

void Scene::Engine::begin(OdDbObjectId space, const OdGeMatrix3d& toPixels, double pixelsPerUnit, PixelBuffer& into) {
    update();
    updates_ = grids_.updates();
    plotter_.measureBy(grids_.blocks());
    into.clear(into.width, into.height, Styles::kBackground);
    picture_ = Picture(into.width, into.height, Styles::kBackground);
    space_ = space;
    pass_ = {toPixels, pixelsPerUnit, {}};
    into_ = &into;
    stage_ = Stage::kGrids;
    gridsMade_ = 0;
    begunWithGrids_ = false;
    parts_.clear();
    part_ = entry_ = 0;
    ++pictures_;
    plotter_.setEmphasis(Emphasis::kPlain);
    plotter_.beginPicture();
}

double Scene::Engine::progress() const {
    if (stage_ == Stage::kFinished) return 1;
    if (stage_ == Stage::kGrids) return gridsMade_ / 2;
    const double part = part_ < parts_.size() && !parts_[part_].entries.empty()
                            ? static_cast<double>(entry_) / static_cast<double>(parts_[part_].entries.size())
                            : 0;
    const double drawn = (static_cast<double>(part_) + part) / static_cast<double>(parts_.size());
    return std::min(begunWithGrids_ ? (1 + drawn) / 2 : drawn, 0.99);
}

bool Scene::Engine::makeGrids(Clock::time_point end) {
    const double first = grids_.makeUntil(space_, end);
    gridsMade_ = first;
    if (first < 1) return false;
    const OdDbObjectId model = grids_.database().modelSpaceId();
    if (space_ == model) return true;
    for (const Entry* const entry : grids_.of(space_).all()) {
        if (!entry->id.isKindOf(OdDbViewport::desc()) || !plotter_.showsSpace(*entry->id.openAs<OdDbViewport>()))
            continue;
        gridsMade_ = (first + grids_.makeUntil(model, end)) / 2;
        return gridsMade_ == 1;
    }
    return true;
}

// In the order of drawing, in the pass that was entered.
std::vector<const Entry*> Scene::Engine::entriesSeen(OdDbObjectId space) {
    EntityGrid& grid = grids_.of(space);
    std::vector<const Entry*> entries;
    if (const auto window = plotter_.window()) {
        const double reach = plotter_.margin() / std::ldexp(1.0, plotter_.size() - 1);
        entries = grid.meeting({window->low - OdGeVector2d(reach, reach), window->high + OdGeVector2d(reach, reach)});
    } else {
        entries = grid.all();
    }
    grid.sortForDrawing(entries);
    return entries;
}

// Viewports lie between the other entities of a layout.
void Scene::Engine::makeParts() {
    parts_.push_back({pass_, space_, {}});
    if (!plotter_.enter(pass_)) return;
    const OdDbObjectId model = grids_.database().modelSpaceId();
    for (const Entry* const entry : entriesSeen(space_)) {
        if (!entry->id.isKindOf(OdDbViewport::desc())) {
            parts_.back().entries.push_back(entry);
            continue;
        }
        if (!plotter_.showsSpace(*entry->id.openAs<OdDbViewport>()) || hidden.count(entry->id) != 0) continue;
        parts_.push_back({{pass_.toPixels, pass_.pixelsPerUnit, entry->id}, model, {}, true});
        if (plotter_.enter(parts_.back().pass)) {
            for (const Entry* const seen : entriesSeen(model))
                if (!seen->id.isKindOf(OdDbViewport::desc())) parts_.back().entries.push_back(seen);
        }
        plotter_.enter(pass_);
        parts_.push_back({pass_, space_, {}});
    }
}

void Scene::Engine::enterPart() {
    const Part& part = parts_[part_];
    current_ = nullptr;
    if (!plotter_.enter(part.pass)) return;
    grid_ = &grids_.of(part.space);
    window_ = plotter_.window();
    current_ = &lists_[{part.space, plotter_.size(), plotter_.frozenLayers()}];
    current_->used = pictures_;
    if (current_->ranges.size() < grid_->size()) {
        bytes_ -= bytesOf(*current_);
        current_->ranges.resize(grid_->size());
        bytes_ += bytesOf(*current_);
    }
}

void Scene::Engine::draw(const Entry& entry) {
    if (hidden.count(entry.id) != 0) return;
    const bool isLarge = window_ && entry.hasBox && !entry.endless &&
                         (entry.box.high.x - entry.box.low.x > kLarge * (window_->high.x - window_->low.x) ||
                          entry.box.high.y - entry.box.low.y > kLarge * (window_->high.y - window_->low.y));
    if (isLarge) {
        if (const auto entity = entry.id.openIf<OdDbEntity>()) plotter_.draw(*entity);
        return;
    }
    Lists::Range& range = current_->ranges[grid_->indexOf(entry)];
    if (range.count != Lists::kUnknown) {
        plotter_.draw(current_->list, std::span(current_->list.items()).subspan(range.first, range.count));
        return;
    }
    if (bytes_ > kMostBytes) makeRoom(*current_);
    if (bytes_ > kMostBytes) {
        DisplayList list;
        plotter_.addTo(list, entry.id);
        return plotter_.draw(list, list.items());
    }
    bytes_ -= bytesOf(*current_);
    range.first = static_cast<std::uint32_t>(current_->list.items().size());
    plotter_.addTo(current_->list, entry.id);
    range.count = static_cast<std::uint32_t>(current_->list.items().size()) - range.first;
    bytes_ += bytesOf(*current_);
    plotter_.draw(current_->list, std::span(current_->list.items()).subspan(range.first, range.count));
}

void Scene::Engine::paint() {
    painter_.paint(picture_, *into_);
    picture_.clear();
}

bool Scene::Engine::continueUntil(Clock::time_point end) {
    // Somebody picked in a drawing that has changed.
    if (grids_.updates() != updates_) stage_ = Stage::kFinished;
    if (stage_ == Stage::kFinished) return true;
    if (stage_ == Stage::kGrids) {
        if (!makeGrids(end)) {
            begunWithGrids_ = true;
            return false;
        }
        makeParts();
        stage_ = Stage::kParts;
    }
    constexpr std::size_t kMostShapes = 2000;
    for (; part_ < parts_.size(); ++part_, entry_ = 0) {
        if (entry_ == 0) enterPart();
        const Part& part = parts_[part_];
        for (; current_ && entry_ < part.entries.size();) {
            draw(*part.entries[entry_++]);
            if (picture_.shapes().size() > kMostShapes) paint();
            if (entry_ % 8 == 0 && Clock::now() >= end) {
                paint();
                return false;
            }
        }
        if (part.isViewport) {
            plotter_.enter(pass_);
            if (const auto viewport = part.pass.viewport.openIf<OdDbViewport>()) plotter_.drawFrame(*viewport);
        }
        paint();
    }
    stage_ = Stage::kFinished;
    return true;
}

void Scene::Engine::drawOver(std::span<const OdDbEntity* const> entities, Emphasis emphasis, PixelBuffer& into,
                             OdDbObjectId viewport) {
    if (picture_.width() != into.width || picture_.height() != into.height)
        picture_ = Picture(into.width, into.height, Styles::kBackground);
    plotter_.beginPicture();
    plotter_.setEmphasis(emphasis);
    plotter_.measureBy(grids_.blocks());
    if (plotter_.enter({pass_.toPixels, pass_.pixelsPerUnit, viewport}))
        for (const OdDbEntity* const entity : entities) plotter_.draw(*entity);
    painter_.paint(picture_, into);
    picture_.clear();
    plotter_.setEmphasis(Emphasis::kPlain);
    // A picture that is still being made goes on where it was.
    if (stage_ == Stage::kParts && part_ < parts_.size()) plotter_.enter(parts_[part_].pass);
}

// ---- the class

Scene::Scene(OdDbDatabase& database)
    : own_(std::make_unique<EntityGrids>(database)), engine_(std::make_unique<Engine>(*own_)) {}
Scene::Scene(EntityGrids& grids) : engine_(std::make_unique<Engine>(grids)) {}
Scene::~Scene() = default;

bool Scene::update() { return engine_->update(); }

void Scene::begin(OdDbObjectId space, const OdGeMatrix3d& toPixels, double pixelsPerUnit, PixelBuffer& into) {
    engine_->begin(space, toPixels, pixelsPerUnit, into);
}

bool Scene::continueFor(std::chrono::milliseconds slice) { return engine_->continueUntil(Clock::now() + slice); }

double Scene::progress() const { return engine_->progress(); }

std::vector<std::wstring> Scene::told() const { return engine_->told(); }

std::size_t Scene::bytes() const { return engine_->bytes(); }

void Scene::hide(OdDbObjectId entity, bool hidden) {
    if (hidden)
        engine_->hidden.insert(entity);
    else
        engine_->hidden.erase(entity);
}

void Scene::drawOver(std::span<const OdDbEntity* const> entities, Emphasis emphasis, PixelBuffer& into,
                     OdDbObjectId viewport) {
    engine_->drawOver(entities, emphasis, into, viewport);
}

}  // namespace host
