// Reading: one pass over the file finds where each record begins, its kind, handle and container. Nothing is decoded.
//
//   file    = head { section } EOF tail
//   section = SECTION { TABLE { entry } ENDTAB | BLOCK { entity } ENDBLK | entity | object } ENDSEC
//   entity  = INSERT { ATTRIB } SEQEND | POLYLINE { VERTEX } SEQEND | any other record
//
// Attributes, vertices and SEQEND belong to what they follow, whatever their groups 66 and 330 say.
#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "base/number.h"
#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/file/spelling.h"

namespace drawingdb {

namespace {

// Groups that the index needs to know: kinds, names, handles and what refers to them.
constexpr bool tellsTheIndex(int code) {
    return code == 0 || code == 2 || code == 5 || code == 67 || code == 105 || (code >= 320 && code < 370) ||
           (code >= 390 && code < 400) || code == 480 || code == 481 || code == 1005;
}
constexpr WantedCodes kWanted(tellsTheIndex);

}  // namespace

class Indexer {
  public:
    Indexer(Core& core, base::FileReading& reading) : core_(core), reading_(reading) {
        core_.file_ = reading_.beyond(kBinaryHead);
        begin_ = core_.file_.data();
        end_ = begin_ + core_.file_.size();
    }

    void run() {
        core_.stubs.add();  // stub 0: the head; also "no stub"
        refuseDwg();
        if (isBinary(core_.file_))
            binary();
        else
            ascii();
        readAll();
        finish();
    }

  private:
    // A DWG begins with the letters and digits of its version, where a DXF begins with the number of a group code.
    void refuseDwg() {
        const std::string_view sign = core_.file_.substr(0, 6);
        const auto isOfVersion = [](char c) { return base::isDigit(c) || c == '.'; };
        if (sign.size() < 6 || sign[1] != 'C' || (sign[0] != 'A' && sign[0] != 'M')) return;
        if (!std::all_of(sign.begin() + 2, sign.end(), isOfVersion)) return;
        core_.failAt(begin_, "this is a DWG (of version " + std::string(sign) +
                                 "), and only DXF can be read here. Remedy: open it in the program that it comes "
                                 "from and save it as DXF");
    }

    // Takes more bytes of the file, which then end further on.
    void readMore() {
        core_.file_ = reading_.beyond(core_.file_.size());
        end_ = begin_ + core_.file_.size();
    }
    void readAll() {
        while (!reading_.isComplete()) readMore();
    }

    void ascii() {
        const char* p = begin_;
        if (core_.file_.starts_with("\xEF\xBB\xBF")) p += 3;
        if (const char* feed = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end_ - p))))
            core_.format.crlf = feed > p && feed[-1] == '\r';
        while (groups(p) && !reading_.isComplete()) readMore();
    }

    // Goes through the groups from `p` on, as far as the file is read; `p` ends up behind the last whole one. False
    // when nothing behind that is to be looked at.
    bool groups(const char*& p) {
        while (p < end_ && !stopAt_) {
            GroupSieve sieve(kWanted, p, end_, core_.format.crlf);
            while (sieve.next()) {
                p = sieve.place();
                asciiGroup(sieve.code(), sieve.codeEnd() + 1, sieve.valueEnd(), p);
                if (stopAt_) return false;
            }
            p = sieve.place();
            if (p < end_ && !anyGroup(p)) break;
        }
        return !stopAt_;
    }

    // The group at `p`, however it is written; `p` ends up behind it. False when it is none, or not all of it is read.
    bool anyGroup(const char*& p) {
        LineFeeds feeds(p, end_);
        const char* const codeEnd = feeds.next();
        const char* const valueEnd = feeds.next();
        if (valueEnd == end_ && !reading_.isComplete()) return false;
        int code = usualCode(p, codeEnd);
        if (code < 0) {
            const auto read = readCode({p, static_cast<std::size_t>(codeEnd - p)});
            if (!read) {
                noGroup(p, codeEnd);
                return false;
            }
            code = *read;
        }
        if (codeEnd == end_ || codeEnd + 1 == end_) {
            cutShort(p);
            return false;
        }
        if (tellsTheIndex(code))
            asciiGroup(code, codeEnd + 1, valueEnd, p);
        else
            p = behind(valueEnd);
        return true;
    }

    void noGroup(const char* line, const char* lineEnd) {
        readAll();
        // Blank lines at the end are none.
        const std::string_view rest(line, static_cast<std::size_t>(end_ - line));
        if (rest.find_first_not_of("\n\r \t\x1A") == std::string_view::npos)
            stopAt_ = line;
        else
            badCode(line, lineEnd);
    }

    const char* behind(const char* valueEnd) const { return valueEnd < end_ ? valueEnd + 1 : end_; }

    // A group that the index needs to know, of which all is known; `p` ends up behind it.
    void asciiGroup(int code, const char* value, const char* valueEnd, const char*& p) {
        const char* const begin = std::exchange(p, behind(valueEnd));
        if (valueEnd > value && valueEnd[-1] == '\r') --valueEnd;
        if (!group(code, {value, static_cast<std::size_t>(valueEnd - value)}, begin)) stopAt_ = p;
    }

    void binary() {
        core_.format.binary = true;
        readAll();
        core_.format.wideCodes = hasWideCodes(core_.file_);
        GroupCursor cursor(core_.file_.substr(kBinaryHead), core_.format);
        Group g;
        while (cursor.next(g)) {
            if (!group(g.code, g.value, g.begin)) {
                stopAt_ = g.end;
                return;
            }
        }
        if (cursor.place() < end_) cutShort(cursor.place());
        stopAt_ = cursor.place();
    }

    // One group; false behind the end-of-file record.
    bool group(int code, std::string_view value, const char* begin) {
        switch (code) {
            case 0:
                return record(trimmed(value), begin);
            case 5:
                if (current_ && !handleDone_ && type_ != rtDimstyle) setHandle(value);
                break;
            case 105:
                if (current_ && !handleDone_ && type_ == rtDimstyle) setHandle(value);
                break;
            case 67:
                if (current_ && inEntities_ && !iComplexChild_ && trimmed(value) == "1")
                    current_->flags |= Stub::paperSpace;
                else if (current_ && inEntities_ && core_.format.binary && value.size() == 2 && value[0] == 1)
                    current_->flags |= Stub::paperSpace;
                break;
            case 2:
                if (type_ == rtSection && !named_)
                    nameSection(trimmed(value));
                else if (type_ == rtTable && !named_)
                    nameTable(trimmed(value));
                break;
            default:
                if (code >= 320 && tellsTheIndex(code) && type_ != rtSection)
                    core_.largestHandle_ = std::max(core_.largestHandle_, parseHandle(value));
        }
        return true;
    }

    void setHandle(std::string_view value) {
        handleDone_ = true;
        if (type_ == rtSection || type_ == rtClass) return;
        const std::uint64_t handle = parseHandle(value);
        if (handle == 0 && faults_++ < kMostFaults)
            core_.warnAt(value.data(), value.empty() ? core_.types.name(type_) + " has an empty handle"
                                                     : core_.types.name(type_) +
                                                           " has a handle that is no hexadecimal number: \"" +
                                                           std::string(value.substr(0, 40)) + "\"");
        current_->handle = handle;
        core_.largestHandle_ = std::max(core_.largestHandle_, handle);
    }

    bool record(std::string_view name, const char* begin) {
        const std::uint16_t type = core_.types.find(name);
        const std::uint32_t index = core_.stubs.size();
        if (index >= 0xFFFFFFF0u) core_.failAt(begin, "more than four thousand million records: this is no drawing");
        Stub& stub = core_.stubs.add();
        stub.offset = static_cast<std::uint64_t>(begin - begin_);
        stub.type = type;
        current_ = &stub;
        type_ = type;
        handleDone_ = false;
        named_ = false;
        iComplexChild_ = false;
        if (complex_) {
            if (type == rtAttrib || type == rtVertex) {
                stub.owner = complex_;
                iComplexChild_ = true;
                return true;
            }
            Stub& whole = core_.stubs[complex_];
            const std::uint32_t owner = complex_;
            complex_ = 0;
            if (type == rtSeqend) {
                whole.close = index;
                whole.flags |= Stub::ownCloser;
                stub.owner = owner;
                iComplexChild_ = true;
                return true;
            }
            whole.close = owner + 1 == index ? 0 : index;
        }
        switch (type) {
            case rtSection:
                closeSection(index, begin, true);
                section_ = index;
                inEntities_ = false;
                break;
            case rtEndsec:
                if (!section_) {
                    fault(begin, "ENDSEC without a SECTION");
                    break;
                }
                stub.owner = section_;
                closeSection(index, begin, false);
                break;
            case rtTable:
                closeInner(index, begin);
                stub.owner = section_;
                table_ = index;
                break;
            case rtEndtab:
                if (table_) {
                    close(table_, index, true);
                    stub.owner = table_;
                    table_ = 0;
                } else {
                    stub.owner = section_;
                    fault(begin, "ENDTAB without a TABLE");
                }
                break;
            case rtBlock:
                closeInner(index, begin);
                stub.owner = section_;
                block_ = index;
                break;
            case rtEndblk:
                if (block_) {
                    close(block_, index, true);
                    stub.owner = block_;
                    block_ = 0;
                } else {
                    stub.owner = section_;
                    fault(begin, "ENDBLK without a BLOCK");
                }
                break;
            case rtEof:
                closeSection(index, begin, true);
                eofSeen_ = true;
                return false;
            case rtInsert:
            case rtPolyline:
                complex_ = index;
                [[fallthrough]];
            default:
                stub.owner = block_ ? block_ : table_ ? table_ : section_;
                if (!section_) fault(begin, std::string(name.substr(0, 40)) + " outside of any section");
        }
        return true;
    }

    void close(std::uint32_t container, std::uint32_t index, bool own) {
        Stub& stub = core_.stubs[container];
        stub.close = index;
        if (own) stub.flags |= Stub::ownCloser;
    }

    void closeInner(std::uint32_t index, const char* begin) {
        if (block_) {
            fault(begin, "a BLOCK is not closed by ENDBLK before this record");
            close(block_, index, false);
            block_ = 0;
        }
        if (table_) {
            fault(begin, "a TABLE is not closed by ENDTAB before this record");
            close(table_, index, false);
            table_ = 0;
        }
    }

    void closeSection(std::uint32_t index, const char* begin, bool missing) {
        closeInner(index, begin);
        if (!section_) return;
        if (missing) fault(begin, "a SECTION is not closed by ENDSEC before this record");
        close(section_, index, !missing);
        section_ = 0;
        inEntities_ = false;
    }

    void nameSection(std::string_view value) {
        named_ = true;
        std::string name(value.substr(0, 40));
        for (char& c : name)
            if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        inEntities_ = name == "ENTITIES";
        if (inEntities_) {
            current_->flags |= Stub::entities;
            if (entities_) core_.stubs[entities_].next = section_;
            if (std::exchange(entities_, section_)) {
                ++sectionsSeen_;
                return;
            }
        }
        if (core_.sections_.emplace(name, current_).second) {
            const auto known = std::find(kSectionNames.begin(), kSectionNames.end(), name);
            if (known != kSectionNames.end())
                core_.knownSections_[static_cast<std::size_t>(known - kSectionNames.begin())] = current_;
        } else {
            fault(value.data(), "a second section " + name + "; the first one counts");
        }
        ++sectionsSeen_;
    }

    void nameTable(std::string_view value) {
        named_ = true;
        core_.tables_.emplace(std::string(value.substr(0, 40)), current_);
    }

    void fault(const char* place, const std::string& text) {
        if (faults_++ < kMostFaults) core_.warnAt(place, text);
    }

    void cutShort(const char* place) {
        if (!sectionsSeen_) core_.failAt(place, "this is no drawing: it ends before its first section");
        core_.warnAt(place, "the file ends in the middle of a group of " +
                                (current_ ? core_.types.name(type_) : std::string("the head")) +
                                "; what comes before is shown, and the drawing is open read-only. Remedy: get the file "
                                "again, it was cut off");
        core_.readOnly = true;
        stopAt_ = end_;
        told_ = true;
    }

    void badCode(const char* line, const char* lineEnd) {
        std::string text(trimmed({line, std::min<std::size_t>(static_cast<std::size_t>(lineEnd - line), 60)}));
        std::ranges::replace(text, '\0', '?');  // it would end the message
        if (!sectionsSeen_) core_.failAt(line, "this is no drawing: a group code is expected, found \"" + text + "\"");
        core_.warnAt(line, "a group code is expected, found \"" + text +
                               "\"; what follows is carried unread, and the drawing is open read-only. Remedy: look "
                               "for a line too many or too "
                               "few before that one");
        core_.readOnly = true;
        stopAt_ = line;
        told_ = true;
    }

    void finish() {
        const auto count = core_.stubs.size();
        if (complex_) core_.stubs[complex_].close = complex_ + 1 == count ? 0 : count;
        if (block_) close(block_, count, false);
        if (table_) close(table_, count, false);
        if (section_) close(section_, count, false);
        if (!sectionsSeen_) {
            core_.failAt(begin_, core_.file_.empty() ? "the file is empty: it is no drawing"
                                                     : "this is no drawing: it has no section");
        }
        core_.endsWithoutEof_ = !eofSeen_ && !told_;
        // The tail: what stands behind the end, or was not understood.
        if (!stopAt_) stopAt_ = end_;
        Stub& tail = core_.stubs.add();
        tail.offset = static_cast<std::uint64_t>(stopAt_ - begin_);
        core_.fileStubs = core_.stubs.size();
        if (faults_ > kMostFaults)
            core_.addWarning(
                0, core_.where(nullptr) + std::to_string(faults_ - kMostFaults) + " more faults of this kind");
    }

    static constexpr std::size_t kMostFaults = 50;
    Core& core_;
    base::FileReading& reading_;
    const char* begin_ = nullptr;
    const char* end_ = nullptr;     // of what is read of the file
    const char* stopAt_ = nullptr;  // nothing from here on is to be looked at
    Stub* current_ = nullptr;
    std::uint16_t type_ = rtNone;
    bool handleDone_ = false;
    bool named_ = false;
    bool inEntities_ = false;
    bool iComplexChild_ = false;
    bool eofSeen_ = false;
    bool told_ = false;
    std::uint32_t section_ = 0, table_ = 0, block_ = 0, complex_ = 0;
    std::uint32_t entities_ = 0;  // the last section ENTITIES
    std::size_t sectionsSeen_ = 0;
    std::size_t faults_ = 0;
};

namespace {
// Line of a place in ASCII bytes, counted from 1.
std::uint64_t lineOf(std::string_view file, const char* place) {
    return static_cast<std::uint64_t>(std::count(file.data(), std::min(place, file.data() + file.size()), '\n')) + 1;
}
}  // namespace

std::string Core::where(const char* place) const {
    std::string text = base::toUtf8(name.empty() ? std::wstring(L"drawing") : base::fileNameOf(name));
    if (!place) return text + ": ";
    if (format.binary) return text + ": byte " + std::to_string(place - file_.data()) + ": ";
    return text + ":" + std::to_string(lineOf(file_, place)) + ": ";
}

void Core::addWarning(std::uint64_t line, const std::string& text) { warnings.push_back({line, text}); }

void Core::warnAt(const char* place, const std::string& text) {
    const bool inFile = place >= file_.data() && place <= file_.data() + file_.size();
    if (!inFile) {
        addWarning(0, where(nullptr) + text);
        return;
    }
    addWarning(format.binary ? static_cast<std::uint64_t>(place - file_.data()) : lineOf(file_, place),
               where(place) + text);
}

void Core::failAt(const char* place, const std::string& text) {
    const bool inFile = place >= file_.data() && place <= file_.data() + file_.size();
    throw OdError(OdResult::badFile, where(inFile ? place : nullptr) + text);
}

std::string Core::version() const {
    return firstVersion_.empty() ? "AC" + std::to_string(format.version) : firstVersion_;
}

// Whether every section that a drawing of the version must have is there and the last thing is the end of one.
bool Core::isComplete() {
    const Stub* entities = section(Section::entities);
    const Stub* last = format.version < version::r13 ? entities : section(Section::objects);
    return entities && last && stubs[fileStubs - 2].type == rtEndsec;
}

void Core::readIndex(base::FileReading& reading) {
    Indexer(*this, reading).run();
    buffer_ = reading.take();
    file_ = buffer_.view();

    if (const auto named = headerVariable("$ACADVER")) {
        if (const std::optional<int> number = versionNumber(named->first)) {
            format.version = *number;
            if (*number == version::ofTheFirst) firstVersion_ = named->first;
        } else {
            addWarning(0, where(nullptr) + "unknown version \"" + std::string(named->first.substr(0, 20)) +
                              "\"; read as the newest one");
        }
    } else {
        format.version = version::r12;  // files without a header are as old as that
    }
    if (endsWithoutEof_) {
        if (isComplete()) {
            warnAt(file_.data() + file_.size(),
                   "the file ends without its end-of-file record, but is complete otherwise");
        } else {
            warnAt(file_.data() + file_.size(),
                   "the file ends without its end-of-file record; the drawing is open read-only. Remedy: get the file "
                   "again, it was cut off");
            readOnly = true;
        }
    }
    // Newer files name the page too, though their texts are UTF-8: it is what their texts are narrowed to.
    if (const auto page = headerVariable("$DWGCODEPAGE")) {
        std::string pageName(trimmed(page->first));
        if (const base::CodePage* known = base::CodePage::byName(pageName)) {
            format.codePage = known;
        } else if (!format.utf8()) {
            addWarning(0, where(nullptr) + "unknown code page \"" + pageName.substr(0, 40) +
                              "\"; texts are read as ANSI_1252");
        }
    }

    // Handles: a direct index where they lie close together, a sorted list otherwise.
    std::size_t withHandle = 0;
    std::uint64_t largest = 0;
    for (std::uint32_t i = 1; i < fileStubs; ++i) {
        const std::uint64_t handle = stubs[i].handle;
        withHandle += handle != 0;
        largest = std::max(largest, handle);
    }
    std::size_t doubles = 0;
    const auto twice = [&](std::uint32_t index) {
        if (doubles++ < 10)
            warnAt(file_.data() + stubs[index].offset,
                   typeName(stubs[index]) + " #" + OdDbHandle(stubs[index].handle).ascii() +
                       " has the handle of an earlier record; the first one is found by it");
    };
    if (largest < withHandle * 8 + 4096) {
        handleIndex_.assign(static_cast<std::size_t>(largest) + 1, 0);
        for (std::uint32_t i = 1; i < fileStubs; ++i) {
            if (!stubs[i].handle) continue;
            std::uint32_t& slot = handleIndex_[static_cast<std::size_t>(stubs[i].handle)];
            if (slot)
                twice(i);
            else
                slot = i;
        }
    } else {
        handleList_.reserve(withHandle);
        for (std::uint32_t i = 1; i < fileStubs; ++i)
            if (stubs[i].handle) handleList_.emplace_back(stubs[i].handle, i);
        std::sort(handleList_.begin(), handleList_.end());
        for (std::size_t k = 1; k < handleList_.size(); ++k)
            if (handleList_[k].first == handleList_[k - 1].first) twice(handleList_[k].second);
    }
    if (doubles > 10)
        addWarning(0,
                   where(nullptr) + std::to_string(doubles - 10) + " more records with the handle of an earlier one");
    if (const auto seed = headerVariable("$HANDSEED")) {
        const std::uint64_t value = parseHandle(seed->first);
        if (value > 0 && value < (std::uint64_t{1} << 62)) largestHandle_ = std::max(largestHandle_, value - 1);
    }
    if (largestHandle_ >= (std::uint64_t{1} << 62)) {
        addWarning(0, where(nullptr) + "a handle is so large that new ones begin again below it");
        largestHandle_ = largest < (std::uint64_t{1} << 62) ? largest : 0;
    }
    firstNewHandle_ = nextHandle_ = largestHandle_ + 1;
    // Old drawings may do without handles, and say so in $HANDLING.
    const auto handling = headerVariable("$HANDLING");
    hasHandles_ =
        withHandle > 0 || (handling ? trimmed(handling->first) != "0" : headerVariable("$HANDSEED").has_value());
    linkBlocks();  // it tells of blocks that cannot be found by their names
}

}  // namespace drawingdb
