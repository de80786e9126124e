// Writing: the stubs in file order. Records that were not changed go out as the stretches of the file that they are.
//
// Derived here, so that undo need not know of it: group 66 and SEQEND of references, the list of fields, and the
// removal of erased objects from groups, sort tables, block-reference lists and the list of fields; $HANDSEED.
#include <algorithm>

#include "core.h"
#include "description.h"
#include "object_access.h"

namespace drawingdb {

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
            if (stub.type == rtSeqend && !emitted(stub)) continue;
            largest_ = std::max(largest_, stub.handle);
            if (stub.type == rtField) newFields_.push_back(i);
        }
        if (core_.erasedEver_) {
            for (std::uint32_t i = 1; i < core_.stubs.size(); ++i)
                if (core_.stubs[i].gone() && core_.stubs[i].handle) erased_.push_back(core_.stubs[i].handle);
            // A handle that a living record has too is not missing.
            std::sort(erased_.begin(), erased_.end());
            std::erase_if(erased_, [&](std::uint64_t h) {
                const Stub* first = core_.byHandle(h);
                return first && !first->gone();
            });
        }
        if (!newFields_.empty()) fieldList_ = core_.fieldList(false);
    }

    /// Whether an anchor goes into the file: an appended SEQEND does when its reference is written anew and has
    /// children.
    bool emitted(const Stub& anchor) const {
        Stub& owner = core_.stubs[anchor.owner];
        const bool anew = owner.has(Stub::appended) || owner.has(Stub::childrenChanged);
        return anew && !owner.gone() && hasChildren(owner);
    }

    bool hasChildren(Stub& reference) const {
        for (Stub* child = core_.nextChild(reference, nullptr); child; child = core_.nextChild(reference, child))
            if (!child->gone()) return true;
        return false;
    }

    bool isErased(std::uint64_t handle) const { return std::binary_search(erased_.begin(), erased_.end(), handle); }

    /// Writes a record of the file; gives the index of the next one to write.
    std::uint32_t record(std::uint32_t i) {
        Stub& stub = core_.stubs[i];
        switch (stub.type) {
            case rtEndsec:
            case rtEndtab:
            case rtEndblk:
                chain(stub);
                break;
            case rtInsert:
                if (stub.has(Stub::childrenChanged)) return reference(i);
                break;
            case rtSeqend:
                break;
            default:
                break;
        }
        if (!stub.gone()) bytes(stub);
        return i + 1;
    }

    /// A reference whose attributes were changed: itself with the right group 66, its attributes, SEQEND when it has
    /// any.
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
                if (child.close) {  // an appended old polyline
                    for (Stub* vertex = core_.nextChild(child, nullptr); vertex;
                         vertex = core_.nextChild(child, vertex))
                        if (!vertex->gone()) bytes(*vertex);
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
                if (&stub == core_.sectionNamed("HEADER")) {
                    emit(withSeed(core_.bytesOf(stub)));
                    return;
                }
                break;
            case rtGroup:
            case rtSortents:
            case rtBlockRecord:
            case rtFieldList:
                if (!erased_.empty() || &stub == fieldList_) {
                    emit(withoutErased(stub));
                    return;
                }
                break;
            default:
                break;
        }
        emit(core_.bytesOf(stub));
    }

    /// The header with $HANDSEED above every handle that was given out and is alive.
    std::string_view withSeed(std::string_view old) {
        if (!largest_) return old;
        const auto seed = core_.headerVariable("$HANDSEED");
        if (seed && parseHandle(seed->first) > largest_) return old;
        patched_.clear();
        GroupWriter writer(patched_, core_.format);
        if (seed) {
            patched_.append(old.substr(0, static_cast<std::size_t>(seed->groups.data() - old.data())));
            writer.handle(5, largest_ + 1);
            patched_.append(
                old.substr(static_cast<std::size_t>(seed->groups.data() + seed->groups.size() - old.data())));
        } else {
            patched_.append(old);
            writer.text(9, "$HANDSEED");
            writer.handle(5, largest_ + 1);
        }
        return patched_;
    }

    std::string_view withoutErased(Stub& stub) {
        const std::string_view old = core_.bytesOf(stub);
        patched_.clear();
        GroupWriter writer(patched_, core_.format);
        GroupCursor cursor(old, core_.format);
        Group group;
        bool dropPair = false;
        bool changed = false;
        bool control = false;
        bool inSet = false;
        std::int64_t count = -1;
        std::size_t countAt = 0, countEnd = 0;
        const auto addFields = [&] {
            if (&stub != fieldList_) return;
            for (const std::uint32_t index : newFields_) writer.handle(330, core_.stubs[index].handle);
            count += static_cast<std::int64_t>(newFields_.size());
            changed = true;
        };
        while (cursor.next(group)) {
            if (group.code == 102) control = !group.value.empty() && group.value.front() == '{';
            if (stub.type == rtFieldList && group.code == 100) {
                if (inSet) addFields();
                inSet = group.value == "AcDbIdSet";
            }
            if (inSet && group.code == 90) {
                countAt = patched_.size();
                count = groupInteger(group, core_.format.binary).value_or(0);
                patched_.append(group.bytes());
                countEnd = patched_.size();
                continue;
            }
            bool drop = false;
            if (dropPair) {
                drop = true;
                dropPair = false;
            } else if (stub.type == rtGroup && group.code == 340) {
                drop = isErased(parseHandle(group.value));
            } else if (stub.type == rtSortents && group.code == 331) {
                drop = dropPair = isErased(parseHandle(group.value));
            } else if (stub.type == rtBlockRecord && control && (group.code == 331 || group.code == 332)) {
                drop = isErased(parseHandle(group.value));
            } else if (inSet && group.code == 330) {
                drop = isErased(parseHandle(group.value));
                count -= drop;
            }
            changed = changed || drop;
            if (!drop) patched_.append(group.bytes());
        }
        if (stub.type == rtFieldList && inSet) addFields();
        if (!changed) return old;
        if (count >= 0) {
            std::string number;
            GroupWriter(number, core_.format).integer(90, count);
            patched_.replace(countAt, countEnd - countAt, number);
        }
        return patched_;
    }

    /// Collects neighbouring stretches, so that an unchanged file goes out in one piece.
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
    std::vector<std::uint64_t> erased_;
    std::vector<std::uint32_t> newFields_;
    Stub* fieldList_ = nullptr;
};

void Core::write(const std::function<void(std::string_view)>& sink) {
    flushAll();
    Saver(*this, sink).run();
}

}  // namespace drawingdb
