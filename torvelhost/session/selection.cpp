// Picks: by handle, at a point, inside references, and sets; and the pick-first set.
#include "torvelhost/session/selection.h"

#include <algorithm>
#include <map>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/number.h"
#include "base/text.h"
#include "base/wildcards.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/readers.h"
#include "drawingdb/text.h"
#include "drawingdb/viewport.h"

namespace host {
namespace {

// Whether what the reply selects is taken away; the reply is the rest of it then. "-3,4" is a point.
bool takesAway(std::wstring_view& text) {
    if (text.size() < 2 || text[0] != L'-' || base::isDigit(text[1]) || text[1] == L'.' || text[1] == L',')
        return false;
    text.remove_prefix(1);
    return true;
}

// The place of an object among those that lie in a container, from 1 on; 0 when it is none of them.
std::uint64_t numberIn(const OdDbObjectIdRange& range, OdDbObjectId wanted, std::uint64_t before = 0) {
    std::uint64_t number = before;
    for (OdDbObjectId id : range) {
        ++number;
        if (id == wanted) return number;
    }
    return 0;
}

// The object with that number; `number` becomes what is left of it when there are fewer.
OdDbObjectId objectIn(const OdDbObjectIdRange& range, std::uint64_t& number) {
    for (OdDbObjectId id : range)
        if (--number == 0) return id;
    return {};
}

void removeFrom(OdDbObjectIdArray& set, const std::vector<OdDbObjectId>& entities) {
    const std::unordered_set<OdDbObjectId> gone(entities.begin(), entities.end());
    std::erase_if(set, [&gone](OdDbObjectId id) { return gone.contains(id); });
}

// The place that a click on an entity would have, where none is said.
OdGePoint3d placeOf(OdDbObjectId id) {
    if (const auto reference = id.openIf<OdDbBlockReference>()) return reference->position();
    if (const auto text = id.openIf<OdDbText>()) return text->position();
    OdGeExtents3d box;
    if (const auto entity = id.openIf<OdDbEntity>(); entity && entity->geomExtents(box)) return box.center();
    return {};
}

// What a window may know of the prompt that is open.
template <class T>
class WhileAsking {
  public:
    WhileAsking(T& place, T value) : place_(place), before_(std::exchange(place, value)) {}
    ~WhileAsking() { place_ = before_; }
    WhileAsking(const WhileAsking&) = delete;
    WhileAsking& operator=(const WhileAsking&) = delete;

  private:
    T& place_;
    T before_;
};

bool isViewport(OdDbObjectId id) { return id.isKindOf(OdDbViewport::desc()); }

// Through a viewport other things are seen: it is met at its border.
bool isInsideViewport(OdDbObjectId id, const Rectangle& box) {
    const auto viewport = id.openIf<OdDbViewport>();
    if (!viewport) return false;
    const OdGePoint2d middle = viewport->centerPoint().xy();
    const OdGeVector2d half(viewport->width() / 2, viewport->height() / 2);
    return box.low.x > middle.x - half.x && box.high.x < middle.x + half.x && box.low.y > middle.y - half.y &&
           box.high.y < middle.y + half.y;
}

bool anyShownAttributeMeets(const OdDbBlockReference& reference, const Rectangle& rectangle, Styles& styles,
                            drawingdb::LayerStates& layers) {
    for (OdDbObjectId id : reference.attributes()) {
        const auto attribute = id.openIf<OdDbAttribute>();
        if (attribute && isShown(*attribute, layers) && meetsRectangle(*attribute, rectangle, styles)) return true;
    }
    return false;
}

// Attributes are part of what a reference shows.
bool meetsWithAttributes(const OdDbEntity& entity, const Rectangle& rectangle, Styles& styles,
                         drawingdb::LayerStates& layers) {
    if (meetsRectangle(entity, rectangle, styles)) return true;
    const auto* const reference = drawingdb::as<OdDbBlockReference>(entity);
    return reference && anyShownAttributeMeets(*reference, rectangle, styles, layers);
}

// Looks through records without opening them; what was asked of a name once is remembered.
class EntityFilter {
  public:
    explicit EntityFilter(const TypedFilter& filter) : filter_(filter) {}

    bool operator()(OdDbObjectId id) {
        switch (filter_.what) {
            case TypedFilter::kBlock:
                return ofBlock(OdDbBlockReference::blockTableRecordOf(id));
            case TypedFilter::kLayer:
                return entity_.read(id) && remembered(entity_.narrowLayer(), [this] { return entity_.layer(); });
            case TypedFilter::kKind:
                return entity_.read(id) && remembered(entity_.kind(), [this] { return base::widen(entity_.kind()); });
            case TypedFilter::kTag:
                return id.isKindOf(OdDbBlockReference::desc()) && anyAttributeFits(id);
        }
        return false;
    }

  private:
    template <class Wide>
    bool remembered(std::string_view name, Wide wide) {
        const auto found = byName_.find(name);
        if (found != byName_.end()) return found->second;
        return byName_[std::string(name)] = base::fitsPattern(wide(), filter_.pattern);
    }

    bool ofBlock(OdDbObjectId block) {
        if (!block) return false;
        const auto [entry, isNew] = byBlock_.try_emplace(block, false);
        if (isNew)
            if (const auto named = drawingdb::blockStoodFor(block).openIf<OdDbBlockTableRecord>())
                entry->second = base::fitsPattern(named->name(), filter_.pattern);
        return entry->second;
    }

    bool anyAttributeFits(OdDbObjectId reference) {
        reference_.read(reference);
        for (const OdDbObjectId id : reference_.attributes())
            if (attribute_.read(id) && base::fitsPattern(attribute_.tag(), filter_.pattern) &&
                base::fitsPattern(attribute_.textString(), filter_.value))
                return true;
        return false;
    }

    const TypedFilter& filter_;
    OdDbEntityReader entity_;
    OdDbBlockReferenceReader reference_;
    OdDbAttributeReader attribute_;
    std::map<std::string, bool, std::less<>> byName_;
    std::unordered_map<OdDbObjectId, bool> byBlock_;
};

}  // namespace

Rectangle Selection::pickRectangle(const OdGePoint3d& center) {
    return Rectangle::around(center, pickBox * view_.pixelSize());
}

// The topmost entity, which is the one drawn last.
OdDbObjectId Selection::entityAt(const OdGePoint3d& point) { return entityIn(pickRectangle(point)); }

OdDbObjectId Selection::entityIn(const Rectangle& box) {
    const Entities found = entitiesIn(box, true);
    const auto top =
        std::find_if_not(found.rbegin(), found.rend(), [&box](OdDbObjectId id) { return isInsideViewport(id, box); });
    return top == found.rend() ? OdDbObjectId() : *top;
}

// As the drawing is now.
EntityGrids& Selection::grids() {
    document_.grids().update();
    return document_.grids();
}

Selection::Entities Selection::entitiesIn(const Rectangle& rectangle, bool crossing) {
    Entities found;
    drawingdb::LayerStates layers;
    EntityGrids& grids = this->grids();
    for (const EntityGrid::Entry* entry : grids.of(document_.activeSpaceId()).meeting(rectangle)) {
        // What has no box (an infinite line) is in no window.
        if (!entry->hasBox && !crossing) continue;
        const auto entity = entry->id.openIf<OdDbEntity>();
        if (!entity || entity->isInvisibleEntity() || layers.isHidden(entity->layerId())) continue;
        const bool hit = crossing ? meetsWithAttributes(*entity, rectangle, grids.styles(), layers)
                                  : rectangle.contains(entry->box.low) && rectangle.contains(entry->box.high);
        if (hit) found.push_back(entry->id);
    }
    return found;
}

Selection::Entities Selection::allEntities() {
    Entities found;
    drawingdb::LayerStates layers;
    const bool anyFrozen = drawingdb::LayerStates::anyFrozen(*document_.database());
    const auto space = document_.activeSpaceId().openAs<OdDbBlockTableRecord>();
    for (OdDbObjectId id : space->entities()) {
        if (isViewport(id) || !id.isKindOf(OdDbEntity::desc())) continue;
        if (!(anyFrozen && layers.isFrozen(id.openAs<OdDbEntity>()->layerId()))) found.push_back(id);
    }
    return found;
}

Selection::Entities Selection::lastEntity() {
    const Entities all = allEntities();
    return all.empty() ? Entities() : Entities{all.back()};
}

Selection::Entities Selection::fitting(const TypedFilter& filter) {
    EntityFilter fits(filter);
    Entities entities = allEntities();
    std::erase_if(entities, [&fits](OdDbObjectId id) { return !fits(id); });
    return entities;
}

OdDbObjectId Selection::find(const TypedObject& name, std::wstring& reason) const {
    OdDbObjectId id;
    if (std::uint64_t number = name.number; number > 0)
        id = objectIn(document_.activeSpaceId().openAs<OdDbBlockTableRecord>()->entities(), number);
    else
        id = document_.database()->getObjectId(name.handle);
    if (id.isValid() && id.isKindOf(OdDbEntity::desc())) return id;
    reason = id.isValid() ? name.text() + L" is no entity" : L"there is no object " + name.text();
    return {};
}

// An attribute of the reference, or an object of its block; their numbers go on behind each other.
OdDbObjectId Selection::findIn(OdDbObjectId referenceId, const TypedObject& name, std::wstring& reason) const {
    const auto reference = referenceId.openIf<OdDbBlockReference>();
    if (!reference) {
        reason = nameOf(referenceId) + L" is no block reference";
        return {};
    }
    OdDbObjectId id;
    if (std::uint64_t number = name.number; number > 0) {
        id = objectIn(reference->attributes(), number);
        if (const auto block = reference->blockTableRecord().openIf<OdDbBlockTableRecord>(); !id && block)
            id = objectIn(block->entities(), number);
    } else {
        id = document_.database()->getObjectId(name.handle);
        if (id.isValid() && id.containerId() != reference->blockTableRecord() && id.containerId() != referenceId)
            id = OdDbObjectId();
    }
    if (id.isValid()) return id;
    reason = L"there is no object " + name.text() + L" in " + nameOf(referenceId);
    return {};
}

std::wstring Selection::nameOf(OdDbObjectId entity) const {
    const OdDbHandle handle = entity.handle();
    if (!handle.isNull() && document_.database()->getObjectId(handle) == entity) return TypedObject{handle}.text();
    const auto space = document_.activeSpaceId().openAs<OdDbBlockTableRecord>();
    return TypedObject{{}, numberIn(space->entities(), entity)}.text();
}

std::wstring Selection::nameOf(const hostapi::Pick& pick) const {
    if (!pick.entity) return L"none";
    if (!pick.nested || pick.nested == pick.entity || pick.containers.empty())
        return nameOf(pick.entity) + (pick.entity.isKindOf(OdDbBlockReference::desc()) ? L"/." : L"");
    const auto ownHandle = [&](OdDbObjectId id) {
        return !id.handle().isNull() && document_.database()->getObjectId(id.handle()) == id;
    };
    // An attribute's handle picks it in its reference.
    if (pick.nested.containerId() == pick.entity && ownHandle(pick.nested)) return nameOf(pick.nested);
    std::wstring path = nameOf(pick.entity);
    for (std::size_t i = 1; i <= pick.containers.size(); ++i) {
        const OdDbObjectId inner = i < pick.containers.size() ? pick.containers[i] : pick.nested;
        if (ownHandle(inner)) {
            path += L"/" + nameOf(inner);
            continue;
        }
        const auto reference = pick.containers[i - 1].openAs<OdDbBlockReference>();
        std::uint64_t number = numberIn(reference->attributes(), inner);
        if (number == 0) {
            std::uint64_t attributes = 0;
            for ([[maybe_unused]] OdDbObjectId id : reference->attributes()) ++attributes;
            number =
                numberIn(reference->blockTableRecord().openAs<OdDbBlockTableRecord>()->entities(), inner, attributes);
        }
        path += L"/" + TypedObject{{}, number}.text();
    }
    return path;
}

std::optional<hostapi::Pick> Selection::pickByName(const TypedObject& name, std::wstring& reason) const {
    const OdDbObjectId id = find(name, reason);
    if (!id) return std::nullopt;
    hostapi::Pick pick;
    pick.entity = id;
    pick.nested = id;
    if (id.isKindOf(OdDbAttribute::desc())) {
        if (const OdDbObjectId reference = id.containerId(); reference.isKindOf(OdDbBlockReference::desc())) {
            pick.entity = reference;
            pick.containers = {reference};
        }
    }
    pick.point = placeOf(id);
    return pick;
}

// What lies inside the reference there is picked with it.
void Selection::goInto(hostapi::Pick& pick, const Rectangle& box) {
    if (!pick.entity.isKindOf(OdDbBlockReference::desc())) return;
    drawingdb::LayerStates layers;
    const std::vector<NestedHit> hits = nestedHits(pick.entity, box, grids().styles(), layers);
    if (hits.empty()) return;
    pick.nested = hits.front().entity;
    pick.containers = hits.front().containers;
}

hostapi::Pick Selection::pickAt(const OdGePoint3d& point) {
    hostapi::Pick pick;
    pick.point = point;
    pick.hasPoint = true;
    const Rectangle box = pickRectangle(point);
    pick.entity = pick.nested = entityIn(box);
    goInto(pick, box);
    if (reactor_ && pick.entity) choose(pick, *reactor_);
    return pick;
}

std::optional<hostapi::Pick> Selection::toPick(const TypedPick& typed, std::wstring& reason) {
    hostapi::Pick pick;
    if (!typed.path.empty()) {
        std::optional<hostapi::Pick> named = pickByName(typed.path.front(), reason);
        if (!named) return std::nullopt;
        pick = std::move(*named);
    }
    // The rest of the path goes down, each step into a reference's block or attributes.
    for (std::size_t i = 1; i < typed.path.size(); ++i) {
        const OdDbObjectId inner = findIn(pick.nested, typed.path[i], reason);
        if (!inner) return std::nullopt;
        pick.containers.push_back(pick.nested);
        pick.nested = inner;
    }
    pick.isExact = typed.isItself || !pick.containers.empty();
    if (!typed.point) return pick;
    const auto world = document_.toWorld(*typed.point, reason);
    if (!world) return std::nullopt;
    pick.point = *world;
    pick.hasPoint = true;
    const Rectangle box = pickRectangle(pick.point);
    if (typed.path.empty()) pick.entity = pick.nested = entityIn(box);
    if (!pick.isExact) goInto(pick, box);
    return pick;
}

std::optional<hostapi::Pick> Selection::pickByText(std::wstring_view text, std::wstring& reason) {
    const auto typed = parsePick(text);
    return typed ? toPick(*typed, reason) : std::nullopt;
}

std::optional<hostapi::Pick> Selection::pickTyped(std::wstring_view text, std::wstring& reason) {
    std::optional<hostapi::Pick> pick = pickByText(text, reason);
    if (reactor_ && pick && pick->entity) choose(*pick, *reactor_);
    return pick;
}

int Selection::askPick(const wchar_t* prompt, const wchar_t* keywords, Expected::Kind kind, hostapi::Pick& pick) {
    const auto accept = [&](const Reply& reply, std::wstring& reason) {
        std::optional<hostapi::Pick> found;
        if (!reply.quoted) found = pickByText(reply.text, reason);
        if (!found) return false;
        pick = std::move(*found);
        return true;
    };
    const int result = input_.ask(prompt, keywords, L"a pick", accept, {kind});
    if (result == hostapi::kValue && !pick.entity) input_.terminal().notice(L"Nothing was found there.");
    return result;
}

int Selection::pickEntity(const wchar_t* prompt, const wchar_t* keywords, hostapi::Pick& pick) {
    return askPick(prompt, keywords, Expected::kEntity, pick);
}

std::vector<NestedHit> Selection::candidates(const hostapi::Pick& pick) {
    std::vector<NestedHit> found;
    if (pick.nested && pick.nested != pick.entity) found.push_back({pick.nested, pick.containers});
    if (pick.hasPoint && !pick.isExact && pick.entity.isKindOf(OdDbBlockReference::desc())) {
        drawingdb::LayerStates layers;
        for (NestedHit& hit : nestedHits(pick.entity, pickRectangle(pick.point), grids().styles(), layers))
            if (hit.entity != pick.nested || hit.containers != pick.containers) found.push_back(std::move(hit));
    }
    if (pick.entity) found.push_back({pick.entity, {}});
    return found;
}

// The first of what lies there that the reactor takes.
void Selection::choose(hostapi::Pick& pick, HostGsSelectionReactor& reactor) {
    const std::vector<NestedHit> under = candidates(pick);
    pick.nested = OdDbObjectId();
    pick.containers.clear();
    for (const NestedHit& hit : under) {
        if (!reactor.selected(hit.entity, hit.containers.data(), hit.containers.size())) continue;
        pick.nested = hit.entity;
        pick.containers = hit.containers;
        break;
    }
}

int Selection::pickNested(const wchar_t* prompt, const hostapi::Pick* at, HostGsSelectionReactor* reactor,
                          hostapi::Pick& pick) {
    hostapi::Pick found;
    if (at) {
        found = *at;
        // A bare point: whatever lies there.
        if (!found.entity && found.hasPoint) found.entity = found.nested = entityAt(found.point);
    } else {
        const WhileAsking<HostGsSelectionReactor*> asking(reactor_, reactor);
        const int result = askPick(prompt, nullptr, Expected::kNested, found);
        if (result != hostapi::kValue) return result;
    }
    if (reactor) choose(found, *reactor);
    pick = std::move(found);
    return hostapi::kValue;
}

std::vector<OdDbObjectId> Selection::entitiesInWindow(const OdGePoint3d& a, const OdGePoint3d& b, bool crossing) {
    return entitiesIn(Rectangle::between(a, b), crossing);
}

bool Selection::select(std::wstring_view text, Entities& entities, std::wstring& reason) {
    entities.clear();
    if (base::equalsNoCase(text, L"all")) {
        entities = allEntities();
        return true;
    }
    if (base::equalsNoCase(text, L"last")) {
        entities = lastEntity();
        return true;
    }
    if (const auto filter = parseFilter(text)) {
        entities = fitting(*filter);
        return true;
    }
    if (const auto names = parseObjects(text)) {
        for (const TypedObject& name : *names) {
            const auto pick = pickByName(name, reason);
            if (!pick) return false;
            entities.push_back(pick->entity);
        }
        return true;
    }
    if (const auto window = parseWindow(text)) {
        OdGePoint3d corners[2];
        for (int i = 0; i < 2; ++i) {
            if (window->corners[i]) {
                const auto world = document_.toWorld(*window->corners[i], reason);
                if (!world) return false;
                corners[i] = *world;
                document_.setLastPoint(corners[i]);
            } else if (input_.getPoint(i == 0 ? nullptr : &corners[0], corners[i],
                                       i == 0 ? L"Specify first corner" : L"Specify opposite corner", nullptr, 0, 0,
                                       nullptr) != hostapi::kValue) {
                return true;  // given up; nothing is added
            }
        }
        entities = entitiesInWindow(corners[0], corners[1], window->crossing);
        return true;
    }
    if (const auto typed = parsePick(text)) {
        const auto pick = toPick(*typed, reason);
        if (!pick) return false;
        if (pick->entity) entities.push_back(pick->entity);
        return true;
    }
    return false;
}

int Selection::pickSet(const wchar_t* prompt, OdDbObjectIdArray& entities, const wchar_t* keywords) {
    if (std::exchange(offersPickFirst_, false) && !pickFirst_.empty()) {
        entities = pickFirst_;
        input_.terminal().notice(std::to_wstring(entities.size()) + L" found");
        return hostapi::kValue;
    }
    OdDbObjectIdArray set;
    const WhileAsking<const OdDbObjectIdArray*> asking(making_, &set);
    std::unordered_set<OdDbObjectId> known;
    for (;;) {
        Entities found;
        bool removes = false;
        const auto accept = [&](const Reply& reply, std::wstring& reason) {
            std::wstring_view text = reply.text;
            removes = takesAway(text);
            return !reply.quoted && select(text, found, reason);
        };
        const int result = input_.ask(prompt && *prompt ? prompt : L"Select objects", keywords, L"a selection", accept,
                                      {Expected::kSet});
        if (result == hostapi::kCancel || result >= hostapi::kFirstKeyword) return result;
        if (result == hostapi::kEmpty) break;
        const std::size_t before = set.size();
        if (removes) {
            for (OdDbObjectId id : found) known.erase(id);
            removeFrom(set, found);
        } else {
            known.reserve(before + found.size());
            for (OdDbObjectId id : found)
                if (known.insert(id).second) set.push_back(id);
        }
        std::wstring told = std::to_wstring(found.size()) + L" found, ";
        if (removes) told += std::to_wstring(before - set.size()) + L" removed, ";
        told += std::to_wstring(set.size()) + L" in all";
        if (!removes && set.size() - before < found.size()) told += L" (some were there before)";
        input_.terminal().notice(told);
    }
    entities = std::move(set);
    return hostapi::kValue;
}

void Selection::setPickFirst(OdDbObjectIdArray entities) {
    pickFirst_ = std::move(entities);
    pickFirstChanged_ = true;
}

bool Selection::setPickFirst(const Reply& reply, std::wstring& reason) {
    std::wstring_view text = reply.text;
    const bool removes = takesAway(text);
    Entities found;
    if (const auto names = parseObjects(text)) {
        for (const TypedObject& name : *names) {
            const auto pick = pickByName(name, reason);
            if (!pick) return false;
            // An attribute stands in the set itself, not its reference.
            found.push_back(pick->nested);
        }
    } else if (reply.quoted || parsePick(text) || !select(text, found, reason)) {
        return false;  // a click there would say what it has met
    }
    OdDbObjectIdArray set;
    if (removes) {
        set = pickFirst_;
        removeFrom(set, found);
    } else {
        std::unordered_set<OdDbObjectId> known;
        for (OdDbObjectId id : found)
            if (known.insert(id).second) set.push_back(id);
    }
    setPickFirst(std::move(set));
    return true;
}

void Selection::endCommand() {
    if (!pickFirstChanged_) pickFirst_.clear();
    startingPick_.reset();
    highlighted_.clear();
    hidden_.clear();
}

void Selection::highlight(OdDbObjectId entity, bool on) {
    const bool changed = on ? highlighted_.insert(entity).second : highlighted_.erase(entity) > 0;
    if (changed && highlightWatcher_) highlightWatcher_(entity, on);
}

void Selection::redraw(OdDbObjectId entity) {
    const auto opened = entity.openIf<OdDbEntity>();
    if (!opened) return;
    const Redrawn how = opened->isInvisibleEntity() ? (hidden_.insert(entity), Redrawn::kHidden)
                        : hidden_.erase(entity) > 0 ? Redrawn::kShown
                                                    : Redrawn::kRedrawn;
    if (redrawWatcher_) redrawWatcher_(entity, how);
}

}  // namespace host
