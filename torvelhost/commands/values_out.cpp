// VALUESOUT: writes the attribute values of references into a table for spreadsheets; value_list.h says what stands in
// it.
#include <unordered_set>

#include "base/csv.h"
#include "base/files.h"
#include "base/paths.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/drawing_file.h"
#include "drawingdb/layer_states.h"
#include "drawingdb/symbol_table.h"
#include "torvelhost/commands/host_commands.h"
#include "torvelhost/commands/value_list.h"
#include "torvelhost/session/drawing_files.h"

namespace host::commands {
namespace {

bool isReference(OdDbObjectId id) { return id.isKindOf(OdDbBlockReference::desc()); }

// An attribute stands for its reference.
OdDbObjectIdArray referencesAmong(const OdDbObjectIdArray& selected) {
    OdDbObjectIdArray references;
    std::unordered_set<OdDbObjectId> ofAttributes;
    for (OdDbObjectId id : selected) {
        if (id.isKindOf(OdDbAttribute::desc()) && !ofAttributes.insert(id = id.containerId()).second) continue;
        if (isReference(id)) references.push_back(id);
    }
    return references;
}

// Those with attributes in model space and in the layouts, but for frozen layers.
OdDbObjectIdArray referencesEverywhere(const OdDbDatabase& database) {
    OdDbObjectIdArray references;
    OdDbBlockReferenceReader reference;
    drawingdb::LayerStates layers;
    const bool anyFrozen = drawingdb::LayerStates::anyFrozen(database);
    const auto takeFrom = [&](OdDbObjectId spaceId) {
        for (const OdDbObjectId id : spaceId.openAs<OdDbBlockTableRecord>()->entities()) {
            if (!isReference(id)) continue;
            reference.read(id);
            const OdDbObjectIdRange attributes = reference.attributes();
            if (attributes.begin() == attributes.end()) continue;
            if (!anyFrozen || !layers.isFrozen(id.openAs<OdDbEntity>()->layerId())) references.push_back(id);
        }
    };
    // An old drawing may have no block for model space, nor a table of blocks.
    const OdDbObjectId modelSpace = database.modelSpaceId();
    if (!modelSpace.isNull()) takeFrom(modelSpace);
    const auto blocks = database.blockTableId().openIf<OdDbSymbolTable>();
    if (!blocks) return references;
    for (const OdDbObjectId blockId : blocks->records()) {
        if (blockId == modelSpace) continue;
        const auto space = blockId.openIf<OdDbBlockTableRecord>();
        if (space && space->isLayout()) takeFrom(blockId);
    }
    return references;
}

bool hasZeroByte(std::string_view text) { return text.find('\0') != text.npos; }

// The lines of the table. New columns turn up on the way: a line ends where its reference's own columns do, and gets
// the empty cells of later ones when it is written.
class Table {
  public:
    explicit Table(const OdDbDatabase& database)
        : database_(database), drawing_(base::toUtf8(base::fileNameOf(database.fileName()))) {}

    void add(OdDbObjectId id) {
        reference_.read(id);
        tags_.beginReference();
        for (std::string& value : values_) value.clear();
        reference_.eachAttribute([this, id](OdDbObjectId, std::string_view tag, std::string_view value) {
            if (hasZeroByte(tag)) return tellZeroByte(id, tag, L"the tag", L"it has no column");
            std::string& cell = values_[columnOf(tag)];
            if (!hasZeroByte(value))
                cell = value;
            else
                tellZeroByte(id, tag, L"the value", L"its cell is empty");
        });

        // A handle that leads to another object is none to go by.
        const bool isFound = !id.handle().isNull() && database_.getObjectId(id.handle()) == id;
        if (isFound) (lines_ += '#') += id.handle().ascii();
        withoutHandle_ += isFound ? 0 : 1;
        const std::string& block = reference_.blockName();
        if (hasZeroByte(block)) tellZeroByte(id, block, L"the name of the block", L"its cell is empty");
        addCell(hasZeroByte(block) ? std::string_view() : block);
        addCell(drawing_);
        for (const std::string& value : values_) addCell(value);
        ends_.push_back({lines_.size(), values_.size()});
    }

    void write(base::AtomicFile& file) const {
        file.write(heads_);
        file.write("\r\n");
        std::size_t begin = 0;
        const std::string commas(values_.size(), ',');
        for (const auto& [end, columns] : ends_) {
            file.write(std::string_view(lines_).substr(begin, end - begin));
            file.write(std::string_view(commas).substr(columns));
            file.write("\r\n");
            begin = end;
        }
    }

    std::size_t withoutHandle() const { return withoutHandle_; }
    /// A line for each text that no table can hold. What it leaves empty, or out, is no change on the way back.
    const std::vector<std::wstring>& withZeroByte() const { return withZeroByte_; }

  private:
    struct LineEnd {
        std::size_t position, columns;
    };

    void tellZeroByte(OdDbObjectId reference, std::string_view of, const wchar_t* what, const wchar_t* so) {
        const std::wstring name = base::replaceAll(base::fromUtf8(of), std::wstring(1, L'\0'), L"\\0");
        withZeroByte_.push_back(L"#" + reference.handle().text() + L", " + name + L": " + what +
                                L" has a zero byte, which no table can hold; " + so +
                                L", which VALUESIN takes for no change");
    }

    std::size_t columnOf(std::string_view tag) {
        const TagColumns::Place place = tags_.next(tag);
        if (place.column == TagColumns::kNone) {
            place.column = values_.size();
            values_.emplace_back();
            heads_ += ',';
            base::appendCsvCell(heads_, TagColumns::write({place.tag, place.occurrence}));
        }
        return place.column;
    }

    void addCell(std::string_view text) {
        lines_ += ',';
        base::appendCsvCell(lines_, text);
    }

    const OdDbDatabase& database_;
    const std::string drawing_;
    TagColumns tags_;
    ListedReference reference_;
    std::string heads_ = std::string(kHandleHead) + "," + std::string(kBlockHead) + "," + std::string(kDrawingHead);
    std::vector<std::string> values_;  // of the reference that is looked at, a column each
    std::string lines_;
    std::vector<LineEnd> ends_;
    std::size_t withoutHandle_ = 0;
    std::vector<std::wstring> withZeroByte_;
};

}  // namespace

CMD_RUNSTATUS valuesOut(HostRun& run) {
    OdString name;
    const int named = run.input.askText(L"Enter file name for the list", nullptr, name);
    if (named == kCancel || name.empty()) return kCommandCancelled;
    OdDbObjectIdArray objects;
    const int selected = run.session.selection.pickSet(L"Select objects or [%s]", objects, L"Everywhere");
    if (selected == kCancel) return kCommandCancelled;
    if (selected == kValue && objects.empty()) return run.refused(L"VALUESOUT: nothing was selected");
    if (base::isSameFile(name, run.database->fileName()) || drawingdb::isDrawingFile(name) || isDwgName(name))
        return run.refused(name + L" is a drawing and is not overwritten");

    const OdDbObjectIdArray references =
        selected == kFirstKeyword ? referencesEverywhere(*run.database) : referencesAmong(objects);
    Table table(*run.database);
    Steps steps(references.size());
    for (std::size_t i = 0; i < references.size(); steps.stepTo(++i)) table.add(references[i]);
    base::AtomicFile file(name);
    table.write(file);
    file.commit();
    run.input.printMessage(L"%s: %s", name.c_str(), counted(references.size(), L"reference").c_str());
    for (const std::wstring& text : table.withZeroByte()) run.terminal().warning(text);
    if (const std::size_t count = table.withoutHandle(); count != 0)
        run.terminal().warning(counted(count, L"reference") +
                               L" cannot be found by a handle, so that VALUESIN cannot take the values back");
    return kCommandFinished;
}

}  // namespace host::commands
