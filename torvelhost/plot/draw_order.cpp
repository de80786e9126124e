#include "torvelhost/plot/draw_order.h"

#include <algorithm>
#include <unordered_map>

#include "drawingdb/block.h"
#include "drawingdb/dictionary.h"
#include "torvelhost/plot/groups.h"

namespace host {
namespace {

using SortHandles = std::unordered_map<OdDbObjectId, std::uint64_t>;

// Pairs of an entity (331) and the handle that stands in for its own (5).
SortHandles sortHandlesOf(const OdDbBlockTableRecord& record) {
    SortHandles handles;
    const auto dictionary = record.extensionDictionary().openIf<OdDbDictionary>();
    if (!dictionary) return handles;
    const auto table = dictionary->getAt(L"ACAD_SORTENTS").open();
    if (!table) return handles;
    OdDbObjectId entity;
    for (const PlotGroup& group : groupsOf(*table)) {
        if (group.code == 331) entity = group.id;
        if (group.code == 5 && entity) {
            handles[entity] = static_cast<std::uint64_t>(group.integer);
            entity = OdDbObjectId();
        }
    }
    return handles;
}

}  // namespace

void forEachInDrawOrder(OdDbObjectId block, const std::function<void(OdDbObjectId)>& visit) {
    const auto record = block.openIf<OdDbBlockTableRecord>();
    if (!record) return;
    const SortHandles handles = sortHandlesOf(*record);
    if (handles.empty()) {
        for (OdDbObjectId id : record->entities()) visit(id);
        return;
    }
    std::vector<std::pair<std::uint64_t, OdDbObjectId>> sorted;
    for (OdDbObjectId id : record->entities()) {
        const auto found = handles.find(id);
        sorted.emplace_back(found != handles.end() ? found->second : id.handle().value(), id);
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [handle, id] : sorted) visit(id);
}

}  // namespace host
