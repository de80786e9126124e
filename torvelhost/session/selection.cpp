// Picks: by handle, at a point, inside references, and sets; and the pick-first set.
#include "torvelhost/session/selection.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/text.h"
#include "drawingdb/viewport.h"

namespace host {
namespace {

std::wstring shown(OdDbHandle handle) { return L"#" + handle.text(); }

// The place that a click on an entity would have, where none is said.
OdGePoint3d placeOf(OdDbObjectId id) {
    if (const auto reference = id.openIf<OdDbBlockReference>()) return reference->position();
    if (const auto text = id.openIf<OdDbText>()) return text->position();
    OdGeExtents3d box;
    if (const auto entity = id.openIf<OdDbEntity>(); entity && entity->geomExtents(box)) return box.center();
    return {};
}

bool isViewport(OdDbObjectId id) { return id.isKindOf(OdDbViewport::desc()); }

bool anyShownAttributeMeets(const OdDbBlockReference& reference, const Rectangle& rectangle,
                            drawingdb::LayerStates& layers) {
    for (OdDbObjectId id : reference.attributes()) {
        const auto attribute = id.openIf<OdDbAttribute>();
        if (attribute && isShown(*attribute, layers) && meetsRectangle(*attribute, OdGeMatrix3d::kIdentity, rectangle))
            return true;
    }
    return false;
}

// Attributes are part of what a reference shows.
bool meetsWithAttributes(const OdDbEntity& entity, const Rectangle& rectangle, drawingdb::LayerStates& layers) {
    if (meetsRectangle(entity, OdGeMatrix3d::kIdentity, rectangle)) return true;
    const auto* const reference = drawingdb::as<OdDbBlockReference>(entity);
    return reference && anyShownAttributeMeets(*reference, rectangle, layers);
}

}  // namespace

Rectangle Selection::pickRectangle(const OdGePoint3d& center) {
    return Rectangle::around(center, pickBox * view_.pixelSize());
}

// The topmost entity, which is the one drawn last.
OdDbObjectId Selection::entityAt(const Rectangle& box) {
    const Entities found = entitiesIn(box, true);
    return found.empty() ? OdDbObjectId() : found.back();
}

// Made anew after every change of the drawing, for whoever picks in it.
const EntityGrid& Selection::grid() {
    const OdDbObjectId space = document_.activeSpaceId();
    const std::uint64_t revision = document_.database()->revision();
    if (!grid_ || gridSpace_ != space || gridRevision_ != revision) {
        grid_.emplace(space);
        gridSpace_ = space;
        gridRevision_ = revision;
    }
    return *grid_;
}

Selection::Entities Selection::entitiesIn(const Rectangle& rectangle, bool crossing) {
    Entities found;
    drawingdb::LayerStates layers;
    for (const EntityGrid::Entry* entry : grid().meeting(rectangle)) {
        // What has no box (an infinite line) is in no window.
        if (!entry->hasBox && !crossing) continue;
        const auto entity = entry->id.openIf<OdDbEntity>();
        if (!entity || entity->isInvisibleEntity() || layers.isHidden(entity->layerId())) continue;
        const bool hit = crossing ? meetsWithAttributes(*entity, rectangle, layers)
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

std::optional<hostapi::Pick> Selection::pickByHandle(OdDbHandle handle, std::wstring& reason) const {
    const OdDbObjectId id = document_.database()->getObjectId(handle);
    if (!id.isValid()) {
        reason = L"there is no object " + shown(handle);
        return std::nullopt;
    }
    if (!id.isKindOf(OdDbEntity::desc())) {
        reason = shown(handle) + L" is no entity";
        return std::nullopt;
    }
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

std::optional<hostapi::Pick> Selection::toPick(const TypedPick& typed, std::wstring& reason) {
    hostapi::Pick pick;
    if (!typed.path.empty()) {
        std::optional<hostapi::Pick> named = pickByHandle(typed.path.front(), reason);
        if (!named) return std::nullopt;
        pick = std::move(*named);
    }
    // The rest of the path goes down, each step into a reference's block or attributes.
    for (std::size_t i = 1; i < typed.path.size(); ++i) {
        const OdDbObjectId inner = document_.database()->getObjectId(typed.path[i]);
        const auto reference = pick.nested.openIf<OdDbBlockReference>();
        if (!reference) {
            reason = shown(typed.path[i - 1]) + L" is no block reference";
            return std::nullopt;
        }
        if (!inner.isValid() ||
            (inner.containerId() != reference->blockTableRecord() && inner.containerId() != pick.nested)) {
            reason = L"there is no object " + shown(typed.path[i]) + L" in " + shown(typed.path[i - 1]);
            return std::nullopt;
        }
        pick.containers.push_back(pick.nested);
        pick.nested = inner;
    }
    if (typed.point) {
        const auto world = document_.toWorld(*typed.point, reason);
        if (!world) return std::nullopt;
        pick.point = *world;
        pick.hasPoint = true;
        const Rectangle box = pickRectangle(pick.point);
        if (typed.path.empty()) pick.entity = entityAt(box);
        const bool deeper = pick.entity.isKindOf(OdDbBlockReference::desc()) && pick.containers.empty();
        if (typed.path.empty()) pick.nested = pick.entity;
        if (deeper) {
            drawingdb::LayerStates layers;
            if (const std::vector<NestedHit> hits = nestedHits(pick.entity, box, layers); !hits.empty()) {
                pick.nested = hits.front().entity;
                pick.containers = hits.front().containers;
            }
        }
    }
    return pick;
}

std::optional<hostapi::Pick> Selection::pickByText(std::wstring_view text, std::wstring& reason) {
    const auto typed = parsePick(text);
    return typed ? toPick(*typed, reason) : std::nullopt;
}

int Selection::pickEntity(const wchar_t* prompt, const wchar_t* keywords, hostapi::Pick& pick) {
    const int result = input_.ask(prompt, keywords, L"a pick", [&](const Reply& reply, std::wstring& reason) {
        std::optional<hostapi::Pick> found;
        if (!reply.quoted) found = pickByText(reply.text, reason);
        if (!found) return false;
        pick = std::move(*found);
        return true;
    });
    if (result == hostapi::kValue && !pick.entity) input_.terminal().notice(L"Nothing was found there.");
    return result;
}

std::vector<NestedHit> Selection::candidates(const hostapi::Pick& pick) {
    std::vector<NestedHit> found;
    if (pick.nested && pick.nested != pick.entity) found.push_back({pick.nested, pick.containers});
    if (pick.hasPoint && pick.entity.isKindOf(OdDbBlockReference::desc())) {
        drawingdb::LayerStates layers;
        for (NestedHit& hit : nestedHits(pick.entity, pickRectangle(pick.point), layers))
            if (hit.entity != pick.nested || hit.containers != pick.containers) found.push_back(std::move(hit));
    }
    if (pick.entity) found.push_back({pick.entity, {}});
    return found;
}

int Selection::pickNested(const wchar_t* prompt, const hostapi::Pick* at, HostGsSelectionReactor* reactor,
                          hostapi::Pick& pick) {
    hostapi::Pick found;
    if (at) {
        found = *at;
        // A bare point: whatever lies there.
        if (!found.entity && found.hasPoint) found.entity = found.nested = entityAt(pickRectangle(found.point));
    } else if (const int result = pickEntity(prompt, nullptr, found); result != hostapi::kValue) {
        return result;
    }
    if (reactor) {
        const std::vector<NestedHit> under = candidates(found);
        found.nested = OdDbObjectId();
        found.containers.clear();
        for (const NestedHit& hit : under) {
            if (!reactor->selected(hit.entity, hit.containers.data(), hit.containers.size())) continue;
            found.nested = hit.entity;
            found.containers = hit.containers;
            break;
        }
    }
    pick = std::move(found);
    return hostapi::kValue;
}

bool Selection::addToSet(const Reply& reply, Entities& entities, std::wstring& reason) {
    if (reply.quoted) return false;
    if (base::equalsNoCase(reply.text, L"all")) {
        entities = allEntities();
        return true;
    }
    if (base::equalsNoCase(reply.text, L"last")) {
        entities = lastEntity();
        return true;
    }
    if (const auto handles = parseHandles(reply.text)) {
        for (OdDbHandle handle : *handles) {
            const auto pick = pickByHandle(handle, reason);
            if (!pick) return false;
            entities.push_back(pick->entity);
        }
        return true;
    }
    if (const auto window = parseWindow(reply.text)) {
        OdGePoint3d corners[2];
        for (int i = 0; i < 2; ++i) {
            if (window->corners[i]) {
                const auto world = document_.toWorld(*window->corners[i], reason);
                if (!world) return false;
                corners[i] = *world;
                document_.setLastPoint(corners[i]);
            } else if (input_.askPoint(i == 0 ? L"Specify first corner" : L"Specify opposite corner", nullptr,
                                       corners[i]) != hostapi::kValue) {
                return true;  // given up; nothing is added
            }
        }
        entities = entitiesIn(Rectangle::between(corners[0], corners[1]), window->crossing);
        return true;
    }
    if (const auto typed = parsePick(reply.text)) {
        const auto pick = toPick(*typed, reason);
        if (!pick) return false;
        if (pick->entity) entities.push_back(pick->entity);
        return true;
    }
    return false;
}

int Selection::pickSet(const wchar_t* prompt, OdDbObjectIdArray& entities) {
    if (std::exchange(offersPickFirst_, false) && !pickFirst_.empty()) {
        entities = pickFirst_;
        input_.terminal().notice(std::to_wstring(entities.size()) + L" found");
        return hostapi::kValue;
    }
    OdDbObjectIdArray set;
    std::unordered_set<OdDbObjectId> known;
    for (;;) {
        Entities added;
        const int result = input_.ask(prompt && *prompt ? prompt : L"Select objects", nullptr, L"a selection",
                                      [&](const Reply& reply, std::wstring& reason) {
                                          added.clear();
                                          return addToSet(reply, added, reason);
                                      });
        if (result == hostapi::kCancel) return result;
        if (result == hostapi::kEmpty) break;
        const std::size_t before = set.size();
        known.reserve(before + added.size());
        for (OdDbObjectId id : added)
            if (known.insert(id).second) set.push_back(id);
        input_.terminal().notice(std::to_wstring(added.size()) + L" found, " + std::to_wstring(set.size()) +
                                 L" in all" +
                                 (set.size() - before < added.size() ? L" (some were there before)" : L""));
    }
    entities = std::move(set);
    return hostapi::kValue;
}

void Selection::setPickFirst(OdDbObjectIdArray entities) {
    pickFirst_ = std::move(entities);
    pickFirstChanged_ = true;
}

bool Selection::setPickFirst(const std::vector<OdDbHandle>& handles, std::wstring& reason) {
    OdDbObjectIdArray entities;
    for (OdDbHandle handle : handles) {
        const auto pick = pickByHandle(handle, reason);
        if (!pick) return false;
        // An attribute stands in the set itself, not its reference.
        if (std::find(entities.begin(), entities.end(), pick->nested) == entities.end())
            entities.push_back(pick->nested);
    }
    setPickFirst(std::move(entities));
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
