// The undo log: small steps, undone from the back.
//
//   step     what is kept                       undone by
//   content  the content word before            putting it back (bytes never change, so the word is the image)
//   flags    the flags before                   putting them back
//   append   the chain's last child before      cutting the child off, marking it unborn
//   mark     its number                         nothing: it is a place
//   record, groupStart, groupStop               nothing: they are places
//
// Steps that may be redone are kept with the word that undoing them replaced; redone, they stand in the log as before.
#include <algorithm>
#include <utility>

#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/object_access.h"

namespace drawingdb {

void Core::log(Stub& stub, Step::Kind kind, std::uint64_t old) {
    log_.push_back({indexOf(&stub), kind, old});
    ++changes_;
    ++state_;
    redo_.clear();
}

std::uint64_t Core::exchange(const Step& step, std::uint64_t word) {
    Stub& stub = stubs[step.stub];
    std::uint64_t before = 0;
    switch (step.kind) {
        case Step::content: {
            if (OdDbObject* object = stub.object()) {
                before = std::exchange(ObjectAccess::closedContent(*object), static_cast<Content>(word));
                refresh(*object);
            } else {
                before = std::exchange(stub.content, static_cast<Content>(word));
                GroupCursor cursor(bytesOf(stub), format);
                Group first;
                if (stub.type != rtNone && cursor.next(first) && first.code == 0) stub.type = types.find(first.value);
            }
            if (&stub == section(Section::header)) {
                currentLayout.clear();
                activeViewport = 0;
            }
            if (stub.type == rtBlock || (stub.owner && stubs[stub.owner].type == rtTable)) forgetNames();
            if (stub.type == rtInsert) referencesKnown_ = false;
            break;
        }
        case Step::flags:
            before = std::exchange(stub.flags, static_cast<std::uint32_t>(word));
            break;
        default:
            break;
    }
    return before;
}

// The end of the chain goes, or comes back.
void Core::setLinked(const Step& step, bool linked) {
    Stub& stub = stubs[step.stub];
    Stub& container = stubs[stub.owner];
    Stub* anchor = anchorOf(container, false);
    const auto previous = static_cast<std::uint32_t>(step.old);
    anchor->close = linked ? step.stub : previous;
    (previous ? stubs[previous].next : anchor->next) = linked ? step.stub : 0;
    stub.flags = linked ? stub.flags & ~std::uint32_t{Stub::unborn} : stub.flags | Stub::unborn;
    if (container.type == rtTable || stub.type == rtBlock) forgetNames();
    if (linked && stub.type == rtInsert) referencesKnown_ = false;
}

Core::Step Core::takeStep() {
    const Step step = log_.back();
    log_.pop_back();
    for (OdDbTouchMark* const mark : touchMarks_) {
        if (mark->position_ <= log_.size()) continue;
        mark->position_ = log_.size();
        if (step.kind < Step::record) mark->undone_.push_back(step.stub);
    }
    return step;
}

std::uint64_t Core::undoStep(const Step& step) {
    if (step.kind >= Step::record) return 0;
    --changes_;
    ++state_;
    redo_.clear();
    if (step.kind != Step::append) return exchange(step, step.old);
    setLinked(step, false);
    return 0;
}

void Core::startRecord() {
    flushAll();
    if (!log_.empty() && log_.back().kind == Step::record) return;
    log_.push_back({0, Step::record, 0});
}

std::uint64_t Core::setMark() {
    flushAll();
    log_.push_back({0, Step::mark, ++lastMark_});
    return lastMark_;
}

void Core::dropMark(std::uint64_t mark) {
    const auto found = std::find_if(log_.rbegin(), log_.rend(),
                                    [mark](const Step& step) { return step.kind == Step::mark && step.old == mark; });
    if (found != log_.rend()) found->kind = Step::record;
}

bool Core::hasMark(std::optional<std::uint64_t> mark) const {
    const std::size_t bottom = groups_.empty() ? 0 : groups_.back();
    for (std::size_t i = log_.size(); i > bottom; --i)
        if (log_[i - 1].kind == Step::mark && (!mark || log_[i - 1].old == *mark)) return true;
    return false;
}

void Core::undoBack() {
    flushAll();
    const std::size_t bottom = groups_.empty() ? 0 : groups_.back() + 1;
    while (log_.size() > bottom) {
        const Step step = takeStep();
        if (step.kind == Step::mark) return;
        undoStep(step);
    }
}

bool Core::undoLastRecord() {
    flushAll();
    const std::size_t bottom = groups_.empty() ? 0 : groups_.back() + 1;
    bool changed = false;
    int depth = 0;  // closed groups are taken back whole
    while (log_.size() > bottom) {
        const Step step = takeStep();
        if (step.kind == Step::groupStop)
            ++depth;
        else if (step.kind == Step::groupStart)
            --depth;
        else if (step.kind == Step::record && depth == 0) {
            if (changed) return true;
        } else if (step.kind < Step::record) {
            changed = true;
            undoStep(step);
        }
    }
    return changed;
}

void Core::groupBegin() {
    flushAll();
    groups_.push_back(log_.size());
    log_.push_back({0, Step::groupStart, 0});
}

void Core::groupEnd() {
    if (groups_.empty()) return;
    flushAll();
    groups_.pop_back();
    log_.push_back({0, Step::groupStop, 0});
}

void Core::groupRollBack() {
    if (groups_.empty()) return;
    undoTo(groups_.back());
}

std::size_t Core::undoPosition() {
    requireStored();
    return log_.size();
}

bool Core::isChangedSince(std::size_t position) {
    for (std::size_t i = undoPosition(); i > position; --i)
        if (log_[i - 1].kind < Step::record) return true;
    return false;
}

std::size_t Core::objectsChangedSince(std::size_t position) {
    std::size_t count = 0;
    const std::size_t end = undoPosition();
    std::vector<bool> counted(end > position ? stubs.size() : 0);
    for (std::size_t i = position; i < end; ++i) {
        const Step& step = log_[i];
        if (step.kind >= Step::record || counted[step.stub] || !isObject(stubs[step.stub])) continue;
        counted[step.stub] = true;
        ++count;
    }
    return count;
}

void Core::undoForRedo(std::size_t position) {
    flushAll();
    std::vector<Undone> redo = std::move(redo_);
    redo.emplace_back();
    undoTo(position, &redo.back());
    redo_ = std::move(redo);
}

bool Core::redo() {
    flushAll();
    if (redo_.empty()) return false;
    const Undone undone = std::move(redo_.back());
    redo_.pop_back();
    for (auto kept = undone.rbegin(); kept != undone.rend(); ++kept) {
        const auto& [step, word] = *kept;
        log_.push_back(step);
        if (step.kind >= Step::record) continue;
        ++changes_;
        ++state_;
        if (step.kind == Step::append)
            setLinked(step, true);
        else
            exchange(step, word);
    }
    return true;
}

void Core::undoTo(std::size_t position, Undone* undone) {
    flushAll();
    if (position <= faultPosition_) fault_ = nullptr;
    while (log_.size() > position) {
        const Step step = takeStep();
        if (undone) undone->emplace_back(step, 0);
        if (step.kind == Step::groupStop) {
            // A closed group behind the position: its start lies there too, or it opens again.
            continue;
        }
        if (step.kind == Step::groupStart) {
            if (!groups_.empty() && groups_.back() == log_.size()) groups_.pop_back();
            continue;
        }
        const std::uint64_t word = undoStep(step);
        if (undone) undone->back().second = word;
    }
}

}  // namespace drawingdb
