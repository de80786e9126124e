#include "torvelhost/plot/scene.h"

#include "torvelhost/plot/plotter.h"

namespace host {

class Scene::Engine {
  public:
    explicit Engine(OdDbDatabase& ofDrawing) : database(ofDrawing) {}

    OdDbDatabase& database;
    std::uint64_t revision = 0;
    std::unordered_set<OdDbObjectId> hidden;
    OdDbObjectId space;
    OdGeMatrix3d toPixels;
    double pixelsPerUnit = 1;
    PixelBuffer* into = nullptr;  // while the picture is not finished
};

Scene::Scene(OdDbDatabase& database) : engine_(std::make_unique<Engine>(database)) {}

Scene::~Scene() = default;

bool Scene::update() {
    const std::uint64_t now = engine_->database.revision();
    return std::exchange(engine_->revision, now) != now;
}

void Scene::begin(OdDbObjectId space, const OdGeMatrix3d& toPixels, double pixelsPerUnit, PixelBuffer& into) {
    into.clear(into.width, into.height, Styles::kBackground);
    engine_->space = space;
    engine_->toPixels = toPixels;
    engine_->pixelsPerUnit = pixelsPerUnit;
    engine_->into = &into;
}

bool Scene::continueFor(std::chrono::milliseconds) {
    PixelBuffer* const into = std::exchange(engine_->into, nullptr);
    if (!into) return true;
    Picture picture(into->width, into->height, Styles::kBackground);
    Plotter plotter(engine_->database, picture);
    plotter.hide(engine_->hidden);
    plotter.drawSpace(engine_->space, engine_->toPixels, engine_->pixelsPerUnit);
    Painter(*into).paint(picture);
    return true;
}

double Scene::progress() const { return engine_->into ? 0 : 1; }

void Scene::hide(OdDbObjectId entity, bool hidden) {
    if (hidden)
        engine_->hidden.insert(entity);
    else
        engine_->hidden.erase(entity);
}

void Scene::drawOver(std::span<const OdDbEntity* const> entities, Emphasis emphasis, PixelBuffer& into,
                     OdDbObjectId viewport) {
    Picture picture(into.width, into.height, Styles::kBackground);
    Plotter plotter(engine_->database, picture);
    plotter.setEmphasis(emphasis == Emphasis::kHover      ? Plotter::Emphasis::kHover
                        : emphasis == Emphasis::kSelected ? Plotter::Emphasis::kSelected
                                                          : Plotter::Emphasis::kPlain);
    plotter.drawEntities(entities, engine_->toPixels, engine_->pixelsPerUnit, viewport);
    Painter(into).paint(picture);
}

}  // namespace host
