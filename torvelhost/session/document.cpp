#include "torvelhost/session/document.h"

#include <algorithm>
#include <cmath>

#include "base/files.h"
#include "base/paths.h"
#include "drawingdb/block.h"
#include "drawingdb/viewport.h"
#include "torvelhost/session/drawing_files.h"

namespace host {
Document::Document(OdDbDatabasePtr database) : database_(std::move(database)) {
    if (!database_->isRecovered()) return;
    protectFile(database_->fileName(),
                L"it would lose what could not be recovered of it; save the drawing under another name");
    markUnsaved();
}

OdDbObjectId Document::floatingViewportId() const {
    if (database_->currentSpaceId() == database_->modelSpaceId()) return {};
    const OdDbObjectId viewport = database_->activeViewportId();
    const auto opened = viewport.openIf<OdDbViewport>();
    return opened && opened->number() > 1 ? viewport : OdDbObjectId();
}

OdDbObjectId Document::activeSpaceId() const {
    return floatingViewportId() ? database_->modelSpaceId() : database_->currentSpaceId();
}

bool Document::isModelSpaceActive() const { return activeSpaceId() == database_->modelSpaceId(); }

std::vector<OdDbObjectId> Document::floatingViewports() const {
    std::vector<std::pair<int, OdDbObjectId>> found;
    if (database_->currentSpaceId() != database_->modelSpaceId()) {
        const auto space = database_->currentSpaceId().openAs<OdDbBlockTableRecord>();
        for (OdDbObjectId id : space->entities()) {
            const auto viewport = id.openIf<OdDbViewport>();
            if (viewport && viewport->number() > 1) found.emplace_back(viewport->number(), id);
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<OdDbObjectId> viewports;
    viewports.reserve(found.size());
    for (const auto& [number, id] : found) viewports.push_back(id);
    return viewports;
}

OdGeMatrix3d Document::ucs() const {
    const bool model = isModelSpaceActive();
    const OdGePoint3d origin = database_->headerPoint(model ? "$UCSORG" : "$PUCSORG", OdGePoint3d());
    const OdGeVector3d x =
        database_->headerPoint(model ? "$UCSXDIR" : "$PUCSXDIR", OdGePoint3d(1, 0, 0)).asVector().normal();
    const OdGeVector3d y =
        database_->headerPoint(model ? "$UCSYDIR" : "$PUCSYDIR", OdGePoint3d(0, 1, 0)).asVector().normal();
    const OdGeVector3d z = x.crossProduct(y);
    // Directions that span no plane count as the world's.
    if (z.length() < 1e-6) return OdGeMatrix3d::coordSystem(origin, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    return OdGeMatrix3d::coordSystem(origin, x, y, z.normal());
}

void Document::setUcs(const OdGeMatrix3d& toWorld) {
    const std::string prefix = isModelSpaceActive() ? "$UCS" : "$PUCS";
    const OdGeVector3d x = toWorld.xAxis(), y = toWorld.yAxis();
    database_->setHeaderPoint(prefix + "ORG", toWorld.origin());
    database_->setHeaderPoint(prefix + "XDIR", {x.x, x.y, x.z});
    database_->setHeaderPoint(prefix + "YDIR", {y.x, y.y, y.z});
    // A named one would go on naming what it is no more.
    if (!database_->headerText(prefix + "NAME").empty()) database_->setHeaderText(prefix + "NAME", 2, L"");
}

std::optional<OdGePoint3d> Document::toWorld(const TypedPoint& point, std::wstring& reason) const {
    const OdGeMatrix3d toWorld = ucs();
    const double z = point.flat ? elevation() : point.value.z;
    const OdGePoint3d world =
        point.relative ? lastPoint_ + toWorld * point.value : toWorld * OdGePoint3d(point.value.x, point.value.y, z);
    for (const double coordinate : {world.x, world.y, world.z}) {
        // Written so that what is no number is refused too.
        if (std::fabs(coordinate) <= kFarthest) continue;
        reason = L"the point lies too far away";
        return std::nullopt;
    }
    return world;
}

double Document::elevation() const { return database_->headerReal(elevationName(), 0.0); }

void Document::keepForUndo(const std::wstring& command, std::size_t position) {
    if (database_->isChangedSince(position)) done_.push_back({command, position});
}

std::optional<std::wstring> Document::undoCommand() {
    if (done_.empty()) return std::nullopt;
    const Done last = std::move(done_.back());
    done_.pop_back();
    database_->undoForRedo(last.position);
    undone_.push_back(last.command);
    return last.command;
}

std::optional<std::wstring> Document::redoCommand() {
    const std::size_t position = undoPosition();
    if (undone_.empty() || !database_->redo()) {
        undone_.clear();
        return std::nullopt;
    }
    done_.push_back({std::move(undone_.back()), position});
    undone_.pop_back();
    return done_.back().command;
}

EntityGrids& Document::grids() {
    if (!grids_) grids_.emplace(*database_);
    return *grids_;
}

std::optional<std::wstring> Document::protectionOf(const std::wstring& path) const {
    if (isDwgName(path)) return L"drawings are saved as DXF; give a name that ends in .dxf";
    const auto found = std::ranges::find_if(
        protections_, [&](const Protection& protection) { return base::isSameFile(path, protection.path); });
    return found == protections_.end() ? std::nullopt : std::optional(found->reason);
}

void Document::save(const std::wstring& path) {
    if (database_->isReadOnly())
        throw base::FileError(path,
                              L"not saved: the drawing is damaged and was opened for reading alone; what "
                              L"torvelhost --recover reads of it can be saved under another name");
    if (const auto reason = protectionOf(path)) throw base::FileError(path, L"not saved: " + *reason);
    if (saveGuard_)
        if (const auto reason = saveGuard_(path)) throw base::FileError(path, L"not saved: " + *reason);
    database_->writeFile(path);
    savedRevision_ = database_->revision();
    savedName_ = path;
}

bool Document::isModified() {
    return savedRevision_ ? database_->revision() != *savedRevision_ : database_->isModified();
}

}  // namespace host
