#include "torvelhost/window/gestures.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "base/text.h"
#include "drawingdb/viewport.h"
#include "torvelhost/lines/reply.h"

namespace host {
namespace {

constexpr double kStill = 4;  // pixels that a hand moves while it clicks
constexpr std::wstring_view kDoubleClick = L"DBLCLICK ";

}  // namespace

bool Gestures::isFar(CanvasPoint from, CanvasPoint to) const {
    return std::fabs(from.x - to.x) > kStill * scale_ || std::fabs(from.y - to.y) > kStill * scale_;
}

void Gestures::expect(Expected::Kind kind) {
    if (kind != kind_) giveUp();
    kind_ = kind;
}

bool Gestures::giveUp() {
    const bool any = press_ || corner_;
    press_.reset();
    corner_.reset();
    return any;
}

OdDbObjectId Gestures::under(CanvasPoint at) const {
    const auto point = session_ ? map().pointAt(at) : std::nullopt;
    return point ? session_->selection.entityAt(*point) : OdDbObjectId();
}

void Gestures::pressed(CanvasPoint at) {
    cursor_ = at;
    if (!session_) return;
    if (selects()) {
        press_ = at;
        return;
    }
    const std::wstring text = map().pointText(at);
    if (kind_ == Expected::kPoint) return reply_(text);
    const auto point = map().pointOf(text);
    if (!picks() || !point) return;
    const hostapi::Pick pick = session_->selection.pickAt(*point);
    reply_(pick.entity ? session_->selection.nameOf(pick) + L" " + text : L"none");
}

std::wstring Gestures::named(const std::wstring& line) const {
    if (!session_ || !picks()) return line;
    std::wstring command;
    std::wstring_view text = base::trimmed(line);
    if (kind_ == Expected::kCommand) {
        if (!base::startsWithNoCase(text, kDoubleClick)) return line;
        command = kDoubleClick;
        text = base::trimmed(text.substr(command.size()));
    }
    const auto typed = parsePick(text);
    if (!typed || !typed->point) return line;
    std::wstring reason;
    const auto pick = session_->selection.pickTyped(text, reason);
    if (!pick) return line;
    if (!pick->entity) return command + L"none";
    if (kind_ == Expected::kSet) return session_->selection.nameOf(pick->entity);
    if (!typed->path.empty()) text = base::trimmed(text.substr(text.find_first_of(L" \t")));
    return command + session_->selection.nameOf(*pick) + L" " + std::wstring(text);
}

void Gestures::moved(CanvasPoint at) { cursor_ = at; }

void Gestures::released(CanvasPoint at, bool shift) {
    cursor_ = at;
    if (!press_ || !selects()) return;
    const CanvasPoint from = *press_;
    press_.reset();
    if (isFar(from, at)) {
        corner_.reset();
        return selectWindow(from, at, shift);
    }
    if (corner_) return selectWindow(*std::exchange(corner_, std::nullopt), at, shift);
    if (const OdDbObjectId entity = under(at))
        select(entity, shift);
    else
        corner_ = at;
}

void Gestures::doubleClicked(CanvasPoint at) {
    cursor_ = at;
    if (!session_) return;
    if (kind_ != Expected::kCommand) return pressed(at);
    giveUp();
    const auto point = map().pointAt(at);
    const hostapi::Pick pick = point ? session_->selection.pickAt(*point) : hostapi::Pick();
    // In a layout the border of a viewport is no object to edit.
    if (pick.entity && !pick.entity.isKindOf(OdDbViewport::desc()))
        return reply_(std::wstring(kDoubleClick) + session_->selection.nameOf(pick) + L" " + map().pointText(at));
    enterViewport(at);
}

// Into the viewport there, or out of the one that was entered.
void Gestures::enterViewport(CanvasPoint at) {
    const OdDbObjectId there = map().viewportAt(at), entered = session_->document.floatingViewportId();
    if (there == entered) return;
    if (!there) return reply_(L"PSPACE");
    reply_(L"MSPACE");
    reply_(std::to_wstring(there.openAs<OdDbViewport>()->number()));
}

void Gestures::select(OdDbObjectId entity, bool takesAway) {
    const std::wstring name = session_->selection.nameOf(entity);
    if (takesAway) return reply_(L"-" + name);
    if (kind_ == Expected::kCommand) return setPickFirst({entity});
    reply_(name);
}

void Gestures::selectWindow(CanvasPoint from, CanvasPoint to, bool takesAway) {
    const bool crossing = to.x < from.x;
    const bool adds = kind_ == Expected::kCommand && !takesAway && !session_->selection.pickFirst().empty();
    if (adds) {
        const auto a = map().pointAt(from), b = map().pointAt(to);
        if (a && b) setPickFirst(session_->selection.entitiesInWindow(*a, *b, crossing));
        return;
    }
    reply_(std::wstring(takesAway ? L"-" : L"") + (crossing ? L"C " : L"W ") + map().pointText(from) + L" " +
           map().pointText(to));
}

// A line of handles sets what was selected before anew.
void Gestures::setPickFirst(const std::vector<OdDbObjectId>& added) {
    OdDbObjectIdArray all = session_->selection.pickFirst();
    std::unordered_set<OdDbObjectId> known(all.begin(), all.end());
    for (OdDbObjectId id : added)
        if (known.insert(id).second) all.push_back(id);
    if (all.size() == session_->selection.pickFirst().size()) return;
    std::wstring line;
    for (OdDbObjectId id : all) line += (line.empty() ? L"" : L" ") + session_->selection.nameOf(id);
    reply_(line);
}

std::optional<Overlay::Window> Gestures::window() const {
    const auto& from = corner_ ? corner_ : press_;
    if (!from || (!corner_ && !isFar(*from, cursor_))) return std::nullopt;
    return Overlay::Window{*from, cursor_, cursor_.x < from->x};
}

}  // namespace host
