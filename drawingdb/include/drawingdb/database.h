// OdDbDatabase: one drawing.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "drawingdb/ge.h"
#include "drawingdb/object.h"

class OdDbEntity;
namespace drawingdb {
class Core;
}

/// A fault that was found while reading, or a thing that was put right.
struct OdDbWarning {
    std::uint64_t line = 0;  ///< line of an ASCII file, byte offset of a binary one; 0 when the whole file is meant
    std::string text;        ///< UTF-8, ready to print: "plan.dxf:1203: group 10 of LINE #2F is not a number: \"1O.5\""
};

/// The pairs (original, copy) of a deep clone, in the order in which the copies were made.
class DRAWINGDB_API OdDbIdMapping {
  public:
    struct Pair {
        OdDbObjectId source;
        OdDbObjectId copy;
        bool primary =
            false;  ///< asked for by the caller; false for what came along (attributes, dictionaries, fields)
    };
    const std::vector<Pair>& pairs() const { return pairs_; }
    /// The copy of `source`, or null.
    OdDbObjectId find(OdDbObjectId source) const {
        auto it = index_.find(source);
        return it == index_.end() ? OdDbObjectId() : pairs_[it->second].copy;
    }
    void add(OdDbObjectId source, OdDbObjectId copy, bool primary);

  private:
    std::vector<Pair> pairs_;
    std::map<OdDbObjectId, std::size_t> index_;
};

/// What changed in a drawing: objects that were made, altered or erased, or for which that was taken back or done
/// again.
struct OdDbTouched {
    /// Entities that lie directly in a block or a space, each once: erased ones too, and those that a part of theirs
    /// (an attribute, a vertex) changed for.
    OdDbObjectIdArray entities;
    /// Everything else that changed, each once: records of tables (for a BLOCK its block record), dictionaries and
    /// other objects.
    OdDbObjectIdArray others;
    /// The header, with its variables.
    bool header = false;

    bool empty() const { return entities.empty() && others.empty() && !header; }
};

/// One who asks a drawing for what changed (OdDbDatabase::takeTouched). Must not outlive the drawing.
class DRAWINGDB_API OdDbTouchMark {
  public:
    /// Begins with what changes from now on.
    explicit OdDbTouchMark(OdDbDatabase& database);
    ~OdDbTouchMark();
    OdDbTouchMark(const OdDbTouchMark&) = delete;
    OdDbTouchMark& operator=(const OdDbTouchMark&) = delete;

  private:
    friend class drawingdb::Core;
    drawingdb::Core& core_;
    std::size_t position_;               // in the undo log: what lies behind it is not told yet
    std::vector<std::uint32_t> undone_;  // stubs whose steps before it were taken back
};

/// A drawing. Reads and writes DXF, ASCII and binary, in the version that was read.
///
/// A file is kept in memory as it is and indexed in one pass; an object is decoded when it is opened. What was not
/// changed is written back byte for byte. Belongs to one thread.
class DRAWINGDB_API OdDbDatabase : public OdRxObject {
    OD_DECLARE_CLASS(OdDbDatabase)
  public:
    OdDbDatabase();
    ~OdDbDatabase() override;

    /// ---- files ----
    /// An empty drawing, version 2018, with the tables, dictionaries and one layout that every drawing has.
    static OdSmartPtr<OdDbDatabase> createNew();
    /// Throws OdError(fileError) when the file cannot be read and OdError(badFile) when it is no drawing. A damaged
    /// file opens as far as it goes, with warnings; one that is cut short opens read-only.
    static OdSmartPtr<OdDbDatabase> readFile(const std::wstring& path);
    /// As readFile, from memory. `name` stands in messages.
    static OdSmartPtr<OdDbDatabase> readBytes(const std::string& bytes, const std::wstring& name);
    /// Reads what can be read of a damaged file: what is left out or put right stands in the warnings, with its line. A
    /// sound file is read as readFile reads it. Throws as that does, OdError(badFile) where not one record is found.
    static OdSmartPtr<OdDbDatabase> recoverFile(const std::wstring& path);
    static OdSmartPtr<OdDbDatabase> recoverBytes(const std::string& bytes, const std::wstring& name);
    /// Whether it was read by these and anything was wrong: then it is not the drawing that the file holds.
    bool isRecovered() const;
    /// All or nothing: written beside the target, flushed, then renamed over it. Throws OdError(fileError, readOnly,
    /// notHeldByVersion); the target is as it was then.
    void writeFile(const std::wstring& path);
    std::string writeBytes();
    const std::vector<OdDbWarning>& warnings() const;
    void addWarning(std::uint64_t line, const std::string& text);
    const std::wstring& fileName() const;
    bool isReadOnly() const;
    bool isModified() const;
    /// Another number after every change, also one that takes a change back: what was derived from the drawing at the
    /// same revision still holds.
    std::uint64_t revision();
    /// What changed since this mark last asked, or was made. It comes out of the undo log: nothing is noted beside it
    /// while the drawing is changed, and taking changes back costs more only while there are marks.
    OdDbTouched takeTouched(OdDbTouchMark& mark);
    /// An object that is open for write; null when none is. For those who must not look at a drawing in the middle of
    /// a change; it goes through all objects while any is open.
    OdDbObjectId anyOpenForWrite();
    /// "AC1032" and the like.
    std::string version() const;
    bool isBinary() const;
    /// Everything typed is opened, marked as changed and closed again: for tests that nothing is lost by it. Returns
    /// how many.
    std::size_t touchEverything();

    /// ---- where things are ----
    OdDbObjectId blockTableId() const;
    OdDbObjectId layerTableId() const;
    OdDbObjectId textStyleTableId() const;
    OdDbObjectId linetypeTableId() const;
    /// "BLOCK_RECORD", "LAYER", "STYLE", "LTYPE", "APPID", "DIMSTYLE", "UCS", "VIEW", "VPORT"; null when the file has
    /// no such table.
    OdDbObjectId tableId(std::string_view dxfName) const;
    OdDbObjectId namedObjectsDictionaryId() const;
    OdDbObjectId layoutDictionaryId() const;
    OdDbObjectId modelSpaceId() const;
    /// The block record of the paper space whose entities the file keeps in its entities section.
    OdDbObjectId paperSpaceId() const;
    /// The first record with that handle; null when there is none.
    OdDbObjectId getObjectId(OdDbHandle handle) const;
    /// Found without case; null when there is none.
    OdDbObjectId findBlock(const OdString& name) const;
    OdDbObjectId findLayer(const OdString& name) const;
    OdDbObjectId findTextStyle(const OdString& name) const;
    OdDbObjectId findLinetype(const OdString& name) const;
    std::size_t objectCount() const;

    /// ---- the current space ----
    /// The active layout's block record: model space, or the paper space of the current layout.
    OdDbObjectId currentSpaceId() const;
    OdString currentLayoutName() const;
    /// Makes a layout current ("Model", "Layout1", ...; without case). False when there is none of that name.
    bool setCurrentLayout(const OdString& name);
    /// Names in tab order, "Model" first.
    std::vector<OdString> layoutNames() const;
    /// The active viewport of the current paper space: the floating one that was entered, else the paper space's own
    /// (number 1). Null in model space and when the layout has no viewport.
    OdDbObjectId activeViewportId() const;
    /// Enters a floating viewport of the current layout; null or the layout's own viewport leaves it.
    void setActiveViewport(OdDbObjectId viewport);

    /// ---- header variables, by name with "$" ----
    bool hasHeaderVariable(std::string_view name) const;
    OdString headerText(std::string_view name, const OdString& fallback = OdString()) const;
    double headerReal(std::string_view name, double fallback) const;
    std::int64_t headerInteger(std::string_view name, std::int64_t fallback) const;
    OdGePoint3d headerPoint(std::string_view name, const OdGePoint3d& fallback) const;
    void setHeaderText(std::string_view name, int groupCode, const OdString& value);
    void setHeaderReal(std::string_view name, int groupCode, double value);
    void setHeaderInteger(std::string_view name, int groupCode, std::int64_t value);
    void setHeaderPoint(std::string_view name, const OdGePoint3d& value);

    /// ---- objects ----
    /// Adds an object that is no entity and no table record (a dictionary, a field, ...) to the drawing.
    OdDbObjectId addObject(const OdDbObjectPtr& object, OdDbObjectId owner);
    /// Copies entities into a block record, or dictionary entries into a dictionary, with what they own: attributes,
    /// extension dictionaries, fields. References among the copied objects point to the copies.
    void deepCloneObjects(const OdDbObjectIdArray& objects, OdDbObjectId owner, OdDbIdMapping& mapping);

    /// ---- text as bytes ----
    /// Appends a text as other programs' plain text files have it: in the drawing's code page ($DWGCODEPAGE, ANSI_1252
    /// where it names none), whatever the file's own encoding. A character that the page does not hold becomes
    /// "\U+XXXX", one beyond 16 bits two of these, so that nothing is lost.
    void appendNarrow(std::string& bytes, std::wstring_view text) const;

    /// ---- undo ----
    /// Begins a record: a step that undoLastRecord takes back at once.
    void startUndoRecord();
    /// A place that undoBack comes back to. Marks nest. Gives the mark's number, which no other mark gets.
    std::uint64_t setUndoMark();
    /// Forgets a mark without taking anything back: what lies behind it goes with the mark before. A mark that is used
    /// up stays so.
    void dropUndoMark(std::uint64_t mark);
    /// Takes everything back to the last mark, which is used up. Does not go behind the start of the innermost open
    /// group.
    void undoBack();
    bool hasUndoMark() const;
    /// Whether undoBack can still come back to that mark.
    bool hasUndoMark(std::uint64_t mark) const;
    /// Takes back the last record that changed something; false when there is none.
    bool undoLastRecord();
    /// True opens a group, false closes the innermost one: its changes then belong to what is around it.
    void blockUndoRecording(bool begin);
    /// Whether a group is open.
    bool isUndoBlockStarted() const;
    int undoGroupDepth() const;
    /// Takes back what the innermost open group has done, and closes it.
    void rollBackUndoGroup();
    /// A position in the undo log, for undoTo; grows with every change. Throws when a change could not be stored.
    std::size_t undoPosition();
    /// Whether anything behind that position changed the drawing; marks, records and groups alone do not.
    bool isChangedSince(std::size_t undoPosition);
    /// How many objects were: those made, changed or erased. The header is none.
    std::size_t objectsChangedSince(std::size_t undoPosition);
    /// Takes everything back to that position, with the marks, records and groups that lie behind it.
    void undoTo(std::size_t position);
    /// The same, and redo() can bring it back. No group may be open.
    void undoForRedo(std::size_t position);
    /// Brings back what the last undoForRedo took that was not brought back yet. False, and nothing is done, when there
    /// is none, or when anything was changed or taken back in another way since.
    bool redo();

    /// ---- values that fields ask for ----
    /// Gives the text of a system variable; false when it does not know it. Set by the host.
    using SystemVariables = std::function<bool(const OdString& name, OdString& value)>;
    void setSystemVariables(SystemVariables callback);
    bool systemVariable(const OdString& name, OdString& value) const;
    /// Seconds since 1970-01-01 UTC that "now" means for fields; tests set it.
    using Clock = std::function<std::int64_t()>;
    void setClock(Clock clock);
    std::int64_t now() const;
    /// Offset of local time from UTC in seconds (0 unless set).
    void setUtcOffset(int seconds);
    int utcOffset() const;

    drawingdb::Core& core() const { return *core_; }

  private:
    std::unique_ptr<drawingdb::Core> core_;
};

using OdDbDatabasePtr = OdSmartPtr<OdDbDatabase>;
