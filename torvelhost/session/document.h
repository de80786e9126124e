// An open drawing: its database, where in it the user draws, its coordinate system, and the commands that can be
// undone. What is seen of it is in document_view.h.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "drawingdb/database.h"
#include "hostapi/application.h"
#include "torvelhost/lines/reply.h"
#include "torvelhost/plot/entity_grid.h"

namespace host {

/// No coordinate or distance that is typed lies beyond; squares and cubes of it are finite.
constexpr double kFarthest = 1e100;

class Document final : public HostDocument {
  public:
    explicit Document(OdDbDatabasePtr database);
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

    /// Where its entities lie, for those who draw and those who pick.
    EntityGrids& grids();

    /// Throws base::FileError when the file cannot be written, or when the drawing was opened for reading alone.
    void save(const std::wstring& path);
    /// Where it was saved last; empty: nowhere yet.
    const std::wstring& savedName() const { return savedName_; }
    /// Whether there is more to save than what was saved last, or opened.
    bool isModified();
    /// The database was read from a copy of an unsaved drawing.
    void markUnsaved() { savedRevision_ = ~std::uint64_t{0}; }
    /// From now on saving onto this file is refused: "not saved: " and the reason.
    void protectFile(const std::wstring& path, const std::wstring& reason) { protections_.push_back({path, reason}); }
    bool isFileProtected(const std::wstring& path) const { return protectionOf(path).has_value(); }
    /// Is asked before each save, and gives the reason where one is to be refused.
    using SaveGuard = std::function<std::optional<std::wstring>(const std::wstring& path)>;
    void guardSaves(SaveGuard guard) { saveGuard_ = std::move(guard); }

    /// ---- undo, a whole command at a time
    std::size_t undoPosition() { return database_->undoPosition(); }
    /// After a command that began at this position.
    void keepForUndo(const std::wstring& command, std::size_t position);
    /// Takes back the last command that changed something and returns its name.
    std::optional<std::wstring> undoCommand();
    /// Brings back the command taken back last and returns its name. Nothing when there is none, or when the drawing
    /// was changed since.
    std::optional<std::wstring> redoCommand();

  private:
    struct Done {
        std::wstring command;
        std::size_t position;
    };

    struct Protection {
        std::wstring path, reason;
    };
    /// The reason; nothing: the file may be written.
    std::optional<std::wstring> protectionOf(const std::wstring& path) const;

    OdDbDatabasePtr database_;
    std::optional<EntityGrids> grids_;  // once somebody asks
    HostEdInput* input_ = nullptr;
    OdGePoint3d lastPoint_;
    std::optional<std::uint64_t> savedRevision_;
    std::vector<Done> done_;
    std::wstring savedName_;
    std::vector<Protection> protections_;
    SaveGuard saveGuard_;
    std::vector<std::wstring> undone_;  // the last is the next to be brought back
};

}  // namespace host
