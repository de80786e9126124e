// Writing: the stubs in file order. Records that were not changed go out as the stretches of the file that they are.
//
// Derived here, so that undo need not know of it: group 66 and SEQEND of references, the list of fields, new references
// in the lists of block records, and the removal of erased objects from groups, sort tables, block-reference lists and
// the list of fields; $HANDSEED; a section for new blocks where an old file has none; records of the CLASSES section
// for new objects of kinds that other programs only know by such a record.
#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/object_access.h"
#include "drawingdb/src/core/record_walk.h"

namespace drawingdb {

namespace {

constexpr int kFirstVersionThatCounts = version::v2004;

}  // namespace

class Saver {
  public:
    Saver(Core& core, const std::function<void(std::string_view)>& sink) : core_(core), sink_(sink) {}

    void run() {
        survey();
        for (std::uint32_t i = 0; i < core_.fileStubs;) i = record(i);
        flush();
        if (!piece_.empty()) sink_(piece_);
    }

  private:
    void survey() {
        for (std::uint32_t i = core_.fileStubs; i < core_.stubs.size(); ++i) {
            const Stub& stub = core_.stubs[i];
            if (stub.gone()) continue;
            if ((stub.type == rtSeqend || stub.type == rtEndblk) && !emitted(stub)) continue;
            largest_ = std::max(largest_, stub.handle);
            if (stub.type == rtField) newFields_.push_back(i);
            if (stub.type == rtInsert) {
                Stub& reference = core_.stubs[i];
                if (const Stub* block = core_.blockByRawName(core_.groupText(reference, 2)); block && stub.handle)
                    newReferences_[core_.indexOf(block)].push_back(stub.handle);
            }
            if (stub.type < rtFirstCarried && allKinds()[stub.type].classRecord) ++newObjects_[stub.type];
        }
        if (!newFields_.empty()) fieldList_ = core_.fieldList(false);
    }

    // Whether an anchor goes into the file: an appended SEQEND does when its reference is written anew and has
    // children.
    bool emitted(const Stub& anchor) const {
        Stub& owner = core_.stubs[anchor.owner];
        if (owner.type == rtBlock) return !owner.gone();
        const bool anew = owner.has(Stub::appended) || owner.has(Stub::childrenChanged);
        return anew && !owner.gone() && hasChildren(owner);
    }

    bool hasChildren(Stub& container) const {
        for (Stub* child = core_.nextChild(container, nullptr); child; child = core_.nextChild(container, child))
            if (!child->gone()) return true;
        return false;
    }

    // A handle that a living record has too finds that one first.
    bool isErased(std::uint64_t handle) const {
        const Stub* const stub = core_.byHandle(handle);
        return stub && stub->gone();
    }

    // Writes a record of the file; gives the index of the next one to write.
    std::uint32_t record(std::uint32_t i) {
        Stub& stub = core_.stubs[i];
        switch (stub.type) {
            case rtEndsec:
                chain(stub);
                return endOfSection(i);
            case rtEndtab:
            case rtEndblk:
                chain(stub);
                break;
            case rtInsert:
                if (stub.has(Stub::childrenChanged)) return reference(i);
                break;
            case rtSection:
                if (&stub == core_.section(Section::entities)) newBlocks();
                break;
            default:
                break;
        }
        if (!stub.gone()) bytes(stub);
        return i + 1;
    }

    // A section that the file did not have stands before the entities.
    void newBlocks() {
        Stub* const blocks = core_.section(Section::blocks);
        if (!blocks || !blocks->has(Stub::appended) || !hasChildren(*blocks)) return;
        bytes(*blocks);
        chain(core_.stubs[blocks->close]);
        bytes(core_.stubs[blocks->close]);
    }

    std::uint32_t endOfSection(std::uint32_t i) {
        const auto closes = [&](const Stub* section) { return section && section->close == i; };
        const Stub* classes = core_.section(Section::classes);
        if (closes(classes)) emitKindRecords();
        if (!core_.stubs[i].gone()) bytes(core_.stubs[i]);
        if (!classes && closes(core_.section(Section::header)) && lacksKindRecords()) {
            patched_.clear();
            GroupWriter writer(patched_, core_.format);
            writer.text(0, "SECTION");
            writer.text(2, "CLASSES");
            emit(patched_);
            emitKindRecords();
            patched_.clear();
            writer.text(0, "ENDSEC");
            emit(patched_);
        }
        return i + 1;
    }

    bool lacksKindRecords() const { return !newObjects_.empty(); }

    void emitKindRecords() {
        if (!lacksKindRecords()) return;
        if (Stub* classes = core_.section(Section::classes))
            for (Stub* known = core_.nextChild(*classes, nullptr); known; known = core_.nextChild(*classes, known))
                std::erase_if(newObjects_, [&](const auto& row) {
                    return core_.groupText(*known, 1) == core_.types.name(row.first);
                });
        patched_.clear();
        GroupWriter writer(patched_, core_.format);
        for (const auto& [type, count] : newObjects_) {
            const ClassRecord& record = *allKinds()[type].classRecord;
            writer.text(0, "CLASS");
            writer.text(1, core_.types.name(type));
            writer.text(2, record.className);
            writer.text(3, record.application);
            writer.integer(90, record.proxyFlags);
            if (core_.format.version >= kFirstVersionThatCounts) writer.integer(91, count);
            writer.integer(280, 0);
            writer.integer(281, record.entity ? 1 : 0);
        }
        emit(patched_);
    }

    // A reference whose attributes were changed: itself with the right group 66, its attributes, SEQEND when it has
    // any.
    std::uint32_t reference(std::uint32_t i) {
        Stub& stub = core_.stubs[i];
        const bool own = stub.has(Stub::ownCloser);
        const std::uint32_t next = stub.close ? stub.close + (own ? 1 : 0) : i + 1;
        if (stub.gone()) return next;
        const bool children = hasChildren(stub);
        emit(withFollowFlag(stub, children));
        for (Stub* child = core_.nextChild(stub, nullptr); child; child = core_.nextChild(stub, child))
            if (!child->gone()) bytes(*child);
        if (children)
            if (Stub* anchor = core_.anchorOf(stub, false)) bytes(*anchor);
        return next;
    }

    void chain(Stub& anchor) {
        for (std::uint32_t i = anchor.next; i; i = core_.stubs[i].next) {
            Stub& child = core_.stubs[i];
            if (child.gone()) continue;
            if (child.type == rtInsert) {
                reference(i);
            } else {
                bytes(child);
                if (child.close) {  // an appended block or old polyline
                    chain(core_.stubs[child.close]);
                    bytes(core_.stubs[child.close]);
                }
            }
        }
    }

    std::string_view withFollowFlag(Stub& stub, bool children) {
        const std::string_view old = core_.bytesOf(stub);
        GroupCursor cursor(old, core_.format);
        Group group;
        std::size_t place = 0;
        while (cursor.next(group)) {
            const auto begin = static_cast<std::size_t>(group.begin - old.data());
            const auto end = static_cast<std::size_t>(group.end - old.data());
            if (group.code == 66) {
                const bool flag = groupInteger(group, core_.format.binary).value_or(0) != 0;
                if (flag == children) return old;
                patched_.assign(old.substr(0, begin));
                if (children) GroupWriter(patched_, core_.format).integer(66, 1);
                patched_.append(old.substr(end));
                return patched_;
            }
            // The flag stands before the block's name.
            if (group.code == 2 && !place) place = begin;
        }
        if (!children) return old;
        patched_.assign(old.substr(0, place));
        GroupWriter(patched_, core_.format).integer(66, 1);
        patched_.append(old.substr(place));
        return patched_;
    }

    void bytes(Stub& stub) {
        switch (stub.type) {
            case rtSection:
                if (&stub == core_.section(Section::header)) {
                    emit(withSeed(core_.bytesOf(stub)));
                    return;
                }
                break;
            case rtGroup:
            case rtSortents:
            case rtBlockRecord:
            case rtFieldList:
                if (core_.erasedEver_ || &stub == fieldList_ || newReferences_.contains(core_.indexOf(&stub))) {
                    emit(broughtUpToDate(stub));
                    return;
                }
                break;
            default:
                break;
        }
        emit(core_.bytesOf(stub));
    }

    // The header with $HANDSEED above every handle that was given out and is alive.
    std::string_view withSeed(std::string_view old) {
        if (!largest_) return old;
        // A header that never had it belongs to a program that does without.
        const auto seed = core_.headerVariable("$HANDSEED");
        if (!seed || parseHandle(seed->first) > largest_) return old;
        const auto begin = static_cast<std::size_t>(seed->groups.data() - old.data());
        patched_.assign(old.substr(0, begin));
        GroupWriter(patched_, core_.format).handle(5, largest_ + 1);
        patched_.append(old.substr(begin + seed->groups.size()));
        return patched_;
    }

    // Without the handles of erased objects, and with those of new ones that belong into the list.
    std::string_view broughtUpToDate(Stub& stub) {
        const std::string_view old = core_.bytesOf(stub);
        patched_.clear();
        GroupWriter writer(patched_, core_.format);
        bool changed = false;
        bool dropPair = false;
        bool inReferences = false;  // of a block record; one without the list is of a program that keeps none
        bool inSet = false;         // of a list of fields
        std::int64_t members = 0;   // of the set
        std::optional<std::pair<std::size_t, std::size_t>> count;
        const auto endSet = [&] {
            if (!inSet || &stub != fieldList_) return;
            for (const std::uint32_t index : newFields_) writer.handle(330, core_.stubs[index].handle);
            members += static_cast<std::int64_t>(newFields_.size());
            changed = true;
        };
        const auto endReferences = [&] {
            const auto found = newReferences_.find(core_.indexOf(&stub));
            if (!inReferences || found == newReferences_.end()) return;
            for (const std::uint64_t handle : found->second) writer.handle(331, handle);
            changed = true;
        };
        for (RecordWalk walk(GroupCursor(old, core_.format)); walk.next();) {
            const Group& group = walk.group();
            if (walk.part() == RecordPart::controlEnd) endReferences();
            if (walk.part() == RecordPart::controlBegin)
                inReferences = stub.type == rtBlockRecord && group.value == "{BLKREFS";
            if (walk.part() == RecordPart::marker && stub.type == rtFieldList) {
                endSet();
                inSet = group.value == "AcDbIdSet";
            }
            const auto isDropped = [&](bool isMember) { return isMember && isErased(parseHandle(group.value)); };
            bool drop = std::exchange(dropPair, false);
            if (!drop) {
                switch (stub.type) {
                    case rtGroup:
                        drop = isDropped(group.code == 340);
                        break;
                    case rtSortents:
                        drop = dropPair = isDropped(group.code == 331);
                        break;
                    case rtBlockRecord:
                        drop =
                            isDropped(walk.part() == RecordPart::inControl && (group.code == 331 || group.code == 332));
                        break;
                    case rtFieldList:
                        drop = isDropped(inSet && group.code == 330);
                        if (inSet && group.code == 330 && !drop) ++members;
                        if (inSet && group.code == 90 && !count) count = {patched_.size(), group.bytes().size()};
                        break;
                    default:
                        break;
                }
            }
            changed = changed || drop;
            if (!drop) patched_.append(group.bytes());
        }
        endSet();
        if (!changed) return old;
        if (count) {
            std::string number;
            GroupWriter(number, core_.format).integer(90, members);
            patched_.replace(count->first, count->second, number);
        }
        return patched_;
    }

    // Collects neighbouring stretches, so that an unchanged file goes out in one piece.
    void emit(std::string_view text) {
        if (text.empty()) return;
        if (run_.data() && text.data() == run_.data() + run_.size()) {
            run_ = {run_.data(), run_.size() + text.size()};
            return;
        }
        flush();
        // Patched bytes are used again by the next record.
        if (text.data() == patched_.data())
            append(text);
        else
            run_ = text;
    }
    void flush() {
        if (!run_.empty()) append(run_);
        run_ = {};
    }
    void append(std::string_view text) {
        if (text.size() >= kPiece) {
            if (!piece_.empty()) sink_(piece_);
            piece_.clear();
            sink_(text);
            return;
        }
        if (piece_.size() + text.size() > kPiece) {
            sink_(piece_);
            piece_.clear();
        }
        piece_.append(text);
    }

    static constexpr std::size_t kPiece = std::size_t{1} << 16;
    Core& core_;
    const std::function<void(std::string_view)>& sink_;
    std::string_view run_;
    std::string piece_;
    std::string patched_;
    std::uint64_t largest_ = 0;
    std::vector<std::uint32_t> newFields_;
    std::unordered_map<std::uint32_t, std::vector<std::uint64_t>>
        newReferences_;                        // by the stub of their block's record
    std::map<std::uint16_t, int> newObjects_;  // of kinds with a record of the CLASSES section
    Stub* fieldList_ = nullptr;
};

void Core::write(const std::function<void(std::string_view)>& sink) {
    requireStored();
    Saver(*this, sink).run();
}

}  // namespace drawingdb
