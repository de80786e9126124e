// VALUESIN: takes a table as VALUESOUT writes it, as it comes back from a spreadsheet, and changes the values that
// differ from what VALUESOUT would write now. All lines are looked at first: where one does not fit, nothing is
// changed.
#include <algorithm>
#include <set>
#include <utility>

#include "base/csv.h"
#include "base/files.h"
#include "base/number.h"
#include "base/paths.h"
#include "drawingdb/attribute.h"
#include "drawingdb/layer.h"
#include "drawingdb/mtext_parser.h"
#include "drawingdb/symbol_table.h"
#include "torvelhost/commands/host_commands.h"
#include "torvelhost/commands/value_list.h"

namespace host::commands {
namespace {

// What stands in a cell for an empty value: an empty cell leaves the value alone.
constexpr std::string_view kEmptyCell = "\\e";

// No cell of a spreadsheet holds more; what is longer lacks a quote somewhere.
constexpr std::size_t kLongestValue = 32767;

std::string withLineFeeds(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at)
        if (text[at] != '\r')
            result += text[at];
        else if (text.substr(at, 2) != "\r\n")
            result += '\n';
    return result;
}

// Line ends are whatever the program on the way has made of them.
bool isSameValue(std::string_view cell, std::string_view value) {
    if (cell == value) return true;
    const bool anyReturn = cell.find('\r') != cell.npos || value.find('\r') != value.npos;
    return anyReturn && withLineFeeds(cell) == withLineFeeds(value);
}

std::set<std::wstring, base::LessNoCase> lockedLayersOf(const OdDbDatabase& database) {
    std::set<std::wstring, base::LessNoCase> locked;
    if (const auto layers = database.layerTableId().openIf<OdDbSymbolTable>())
        for (const OdDbObjectId id : layers->records())
            if (const auto layer = id.openIf<OdDbLayerTableRecord>(); layer && layer->isLocked())
                locked.insert(layer->name());
    return locked;
}

// The drawing that lines are for: its name, or as much of its path as a cell gives.
class DrawingName {
  public:
    explicit DrawingName(const std::wstring& fileName)
        : path_(fileName.empty() ? std::wstring() : withSlashes(base::absolutePath(fileName))) {}

    bool fits(std::string_view cell) {
        if (cell.empty()) return true;
        if (cell != cell_) {
            cell_ = cell;
            fits_ = endsWith(withSlashes(base::fromUtf8(cell)));
        }
        return fits_;
    }

  private:
    static std::wstring withSlashes(std::wstring path) {
        std::ranges::replace(path, L'\\', L'/');
        return path;
    }
    bool endsWith(const std::wstring& end) const {
        if (end.size() > path_.size()) return false;
        const std::size_t begin = path_.size() - end.size();
        return base::equalsNoCase(std::wstring_view(path_).substr(begin), end) &&
               (begin == 0 || path_[begin - 1] == L'/' || end.starts_with(L'/'));
    }

    const std::wstring path_;
    std::string cell_;  // that was looked at last
    bool fits_ = false;
};

// A text of the table, in a message.
std::wstring inQuotes(std::string_view text) {
    constexpr std::size_t kLongest = 60;
    const std::wstring wide = base::fromUtf8(text.substr(0, base::utf8Prefix(text, 4 * kLongest)));
    const std::wstring_view front = base::prefix(wide, kLongest);
    return L"\"" + std::wstring(front) + (front.size() < wide.size() ? L"...\"" : L"\"");
}

std::wstring nameOf(OdDbObjectId id) { return L"#" + id.handle().text(); }

struct Change {
    OdDbObjectId attribute;
    std::wstring value;
    bool isMultiLine;
};

// Compares the table with the drawing, a line after the other.
class Comparison {
  public:
    Comparison(HostRun& run, const std::wstring& file, std::string_view text)
        : run_(run),
          file_(file),
          text_(text),
          drawing_(run.database->fileName()),
          lockedLayers_(lockedLayersOf(*run.database)) {}

    // False when something does not fit, which has been told then.
    bool compare();

    const std::vector<Change>& changes() const { return changes_; }
    std::size_t changedReferences() const { return changedReferences_; }
    std::size_t lines() const { return lines_; }
    std::size_t linesOfOthers() const { return linesOfOthers_; }

  private:
    // A table for another drawing has faults without end.
    static constexpr std::size_t kMostTold = 100;

    void readHeads(const base::CsvReader& table);
    void compareLine(const base::CsvReader& table);
    OdDbObjectId findReference(std::string_view handle);
    void compareValues(OdDbObjectId id);
    void compareValue(OdDbObjectId attribute, std::string_view tag, std::string_view value);
    bool isLocked(OdDbObjectId attribute);

    std::string_view cell(std::size_t column) const {
        return column < cells_->size() ? (*cells_)[column] : std::string_view();
    }
    void fault(const std::wstring& what) { fault(line_, what); }
    void fault(std::uint64_t line, const std::wstring& what);

    HostRun& run_;
    const std::wstring& file_;
    const std::string_view text_;
    DrawingName drawing_;
    const std::set<std::wstring, base::LessNoCase> lockedLayers_;

    // The columns.
    TagColumns tags_;
    std::vector<std::wstring> heads_;
    std::vector<std::size_t> tagColumns_;
    std::size_t handleColumn_ = TagColumns::kNone, blockColumn_ = TagColumns::kNone, drawingColumn_ = TagColumns::kNone;

    // The line that is looked at, and its reference.
    const std::vector<std::string_view>* cells_ = nullptr;
    std::uint64_t line_ = 0;
    std::vector<std::uint64_t> metIn_;  // of each column: the last line whose reference has the attribute
    ListedReference reference_;
    OdDbEntityReader entity_;

    std::unordered_map<OdDbObjectId, std::uint64_t> lineOf_;
    std::vector<Change> changes_;
    std::size_t changedReferences_ = 0, lines_ = 0, linesOfOthers_ = 0, faults_ = 0;
};

void Comparison::fault(std::uint64_t line, const std::wstring& what) {
    ++faults_;
    run_.terminal().error(file_ + L":" + std::to_wstring(line) + L": " + what);
}

bool Comparison::compare() {
    try {
        const std::optional<char> separator = base::csvSeparator(text_, kHandleHead);
        base::CsvReader table(text_, separator.value_or(','));
        const bool hasHeads = table.next();
        if (!separator) {
            fault(1, hasHeads ? L"the first line names no column #HANDLE; it has the heads that VALUESOUT writes"
                              : L"the file is empty");
            return false;
        }
        readHeads(table);
        if (faults_ != 0) return false;
        Steps steps(text_.size());
        for (; faults_ < kMostTold && table.next(); steps.stepTo(table.position())) compareLine(table);
        if (faults_ >= kMostTold) fault(table.line(), L"what comes behind was not looked at");
    } catch (const base::CsvError& error) {
        fault(error.line(), base::fromUtf8(error.what()));
    }
    cells_ = nullptr;  // they went with the table
    return faults_ == 0;
}

void Comparison::readHeads(const base::CsvReader& table) {
    line_ = table.line();
    for (std::size_t column = 0; column < table.cells().size(); ++column) {
        const std::string_view head = table.cells()[column];
        heads_.push_back(inQuotes(head));
        std::size_t* place = nullptr;
        if (base::equalsNoCase(head, kHandleHead)) {
            place = &handleColumn_;
        } else if (base::equalsNoCase(head, kBlockHead)) {
            place = &blockColumn_;
        } else if (base::equalsNoCase(head, kDrawingHead)) {
            place = &drawingColumn_;
        } else {
            tagColumns_.push_back(column);
            // A spreadsheet may have columns that nobody has filled.
            if (!head.empty()) place = &tags_.at(TagColumns::read(head));
        }
        if (!place) continue;
        if (*place != TagColumns::kNone) fault(L"two columns are called " + heads_.back());
        *place = column;
    }
    metIn_.resize(heads_.size());
}

void Comparison::compareLine(const base::CsvReader& table) {
    cells_ = &table.cells();
    line_ = table.line();
    ++lines_;
    if (table.isOpen() && cells_->size() < heads_.size())
        return fault(L"the file was cut short here: the line has " + counted(cells_->size(), L"cell") + L" and no end");
    for (std::size_t column = heads_.size(); column < cells_->size(); ++column)
        if (!cell(column).empty())
            return fault(L"the line has more cells than the first one; a cell with a separator in it goes into quotes");
    // A whole table may end so, too.
    if (table.isOpen()) run_.terminal().warning(file_ + L": the last line has no end; was the file cut short?");
    if (!drawing_.fits(cell(drawingColumn_))) {
        ++linesOfOthers_;
        return;
    }
    if (const OdDbObjectId id = findReference(base::trimmed(cell(handleColumn_)))) compareValues(id);
}

// Null, and a fault, when the handle leads to none, or not for the first time.
OdDbObjectId Comparison::findReference(std::string_view text) {
    std::string_view digits = text;
    // VALUESOUT begins handles with a number sign, other lists some with an apostrophe: a bare 1E5 would be a number to
    // a spreadsheet.
    if (digits.starts_with('#') || digits.starts_with('\'')) digits.remove_prefix(1);
    const auto handle = base::parseHex(digits);
    if (!handle) {
        fault(text.empty() ? L"the line has no handle" : inQuotes(text) + L" is no handle");
        return {};
    }
    const OdDbObjectId id = run_.database->getObjectId(OdDbHandle(*handle));
    if (!id.isValid() || !id.isKindOf(OdDbBlockReference::desc())) {
        fault(L"there is no reference " + inQuotes(text) + L" in the drawing");
        return {};
    }
    const auto [entry, isNew] = lineOf_.try_emplace(id, line_);
    if (!isNew) {
        fault(inQuotes(text) + L" stands in line " + std::to_wstring(entry->second) + L" already");
        return {};
    }
    return id;
}

void Comparison::compareValues(OdDbObjectId id) {
    reference_.read(id);
    const std::string_view block = cell(blockColumn_);
    if (!block.empty() && block != reference_.blockName() &&
        !base::equalsNoCase(base::fromUtf8(block), base::fromUtf8(reference_.blockName())))
        return fault(nameOf(id) + L" is a reference of " + inQuotes(reference_.blockName()) + L", not of " +
                     inQuotes(block));
    tags_.beginReference();
    const std::size_t before = changes_.size();
    reference_.eachAttribute([this](OdDbObjectId attribute, std::string_view tag, std::string_view value) {
        compareValue(attribute, tag, value);
    });
    if (changes_.size() != before) ++changedReferences_;
    for (const std::size_t column : tagColumns_)
        if (metIn_[column] != line_ && !cell(column).empty())
            fault(nameOf(id) + L" has no attribute " + heads_[column] + L" that can be changed");
}

void Comparison::compareValue(OdDbObjectId attribute, std::string_view tag, std::string_view value) {
    const std::size_t column = tags_.next(tag).column;
    if (column == TagColumns::kNone) return;
    metIn_[column] = line_;
    std::string_view wanted = cell(column);
    if (wanted.empty() || isSameValue(wanted, value)) return;
    if (wanted == kEmptyCell) wanted = {};
    if (wanted == value) return;
    const auto refuse = [&](const wchar_t* why) {
        fault(nameOf(attribute.containerId()) + L", " + heads_[column] + why);
    };
    if (wanted.size() > kLongestValue) return refuse(L": the value is longer than 32767 bytes; is a quote missing?");
    Change change{attribute, base::fromUtf8(withLineFeeds(wanted)), reference_.isMultiLine()};
    if (!change.isMultiLine && change.value.find(L'\n') != std::wstring::npos)
        return refuse(L": the attribute is a single line and cannot hold the end of one");
    if (isLocked(attribute)) return refuse(L": the attribute or its reference lies on a locked layer");
    changes_.push_back(std::move(change));
}

bool Comparison::isLocked(OdDbObjectId attribute) {
    if (lockedLayers_.empty()) return false;
    const auto isOnLocked = [this](OdDbObjectId id) {
        return entity_.read(id) && lockedLayers_.contains(entity_.layer());
    };
    return isOnLocked(attribute) || isOnLocked(attribute.containerId());
}

void apply(const std::vector<Change>& changes) {
    Steps steps(changes.size());
    for (std::size_t i = 0; i < changes.size(); steps.stepTo(++i)) {
        const Change& change = changes[i];
        const auto attribute = change.attribute.openAs<OdDbAttribute>(OdDb::forWrite);
        // Fields of the old value go with it.
        attribute->setTextString(
            change.isMultiLine ? base::replaceAll(drawingdb::mtextEscaped(change.value), L"\n", L"\\P") : change.value);
    }
}

std::string_view withoutMark(std::string_view text) {
    constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
    return text.starts_with(kUtf8Mark) ? text.substr(kUtf8Mark.size()) : text;
}

bool isUtf16(std::string_view text) { return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"); }

}  // namespace

CMD_RUNSTATUS valuesIn(HostRun& run) {
    OdString name;
    const int named = run.input.askText(L"Enter file name of the list", nullptr, name);
    if (named == kCancel || name.empty()) return kCommandCancelled;
    const base::FileBuffer file = base::readFile(name);
    if (isUtf16(file.view())) return run.refused(name + L": this is UTF-16; save the file as CSV in UTF-8");
    Comparison comparison(run, name, withoutMark(file.view()));
    if (!comparison.compare()) return run.refused(name + L": nothing was changed");
    const std::vector<Change>& changes = comparison.changes();
    if (!changes.empty() && run.database->isReadOnly())
        return run.refused(L"the drawing is damaged and was opened for reading alone: it cannot be changed");
    apply(changes);
    run.input.printMessage(L"%s: %s changed in %s", name.c_str(), counted(changes.size(), L"value").c_str(),
                           counted(comparison.changedReferences(), L"reference").c_str());
    if (const std::size_t others = comparison.linesOfOthers(); others != 0 && others == comparison.lines())
        run.terminal().warning(name + L": no line is for " + base::fileNameOf(run.database->fileName()) +
                               L"; the column #DRAWING names others");
    return kCommandFinished;
}

}  // namespace host::commands
