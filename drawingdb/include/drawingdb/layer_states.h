// The states of layers, for who asks them of many entities.
#pragma once

#include <unordered_map>

#include "drawingdb/database.h"
#include "drawingdb/entity.h"
#include "drawingdb/layer.h"

namespace drawingdb {

/// Remembers what it has looked up: it is made for one use, while which no layer changes. A layer that is not there
/// has no state.
class LayerStates {
  public:
    bool isFrozen(OdDbObjectId layer) { return (flagsOf(layer) & kFrozen) != 0; }
    bool isLocked(OdDbObjectId layer) { return (flagsOf(layer) & kLocked) != 0; }
    /// Off or frozen: what is on it is not seen.
    bool isHidden(OdDbObjectId layer) { return (flagsOf(layer) & (kOff | kFrozen)) != 0; }

    /// Whether it is worth asking.
    static bool anyFrozen(const OdDbDatabase& database) {
        const auto layers = database.layerTableId().openIf<OdDbSymbolTable>();
        if (!layers) return false;
        for (OdDbObjectId id : layers->records())
            if (const auto layer = id.openIf<OdDbLayerTableRecord>(); layer && layer->isFrozen()) return true;
        return false;
    }

  private:
    enum { kOff = 1, kFrozen = 2, kLocked = 4 };

    int flagsOf(OdDbObjectId id) {
        const auto [entry, isNew] = flags_.try_emplace(id, 0);
        if (isNew) {
            if (const auto layer = id.openIf<OdDbLayerTableRecord>())
                entry->second =
                    (layer->isOff() ? kOff : 0) | (layer->isFrozen() ? kFrozen : 0) | (layer->isLocked() ? kLocked : 0);
        }
        return entry->second;
    }

    std::unordered_map<OdDbObjectId, int> flags_;
};

/// For who asks it of one entity.
inline bool isOnLockedLayer(const OdDbEntity& entity) {
    const auto layer = entity.layerId().openIf<OdDbLayerTableRecord>();
    return layer && layer->isLocked();
}

}  // namespace drawingdb
