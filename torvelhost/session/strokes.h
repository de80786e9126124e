// The lines and areas that an entity shows, for picking: seen from above, in world coordinates.
#pragma once

#include <vector>

#include "drawingdb/entity.h"
#include "drawingdb/layer_states.h"
#include "torvelhost/plot/rectangle.h"
#include "torvelhost/plot/style.h"

class OdDbAttribute;

namespace host {

/// Whether any part of the entity lies in the rectangle, on whatever layers. A block reference is met through its
/// geometry, not through its attributes. Texts are met inside the box around them.
bool meetsRectangle(const OdDbEntity& entity, const Rectangle& rectangle, Styles& styles);

/// Whether an attribute of a reference is seen: by its mode, as an entity, and on its layer.
bool isShown(const OdDbAttribute& attribute, drawingdb::LayerStates& layers);

/// An object under the cursor, with the references that hold it, outermost first.
struct NestedHit {
    OdDbObjectId entity;
    std::vector<OdDbObjectId> containers;
};
/// The objects inside a reference that lie in the rectangle: its attributes, then what its block shows, each kind from
/// top to bottom. Inner references are gone into; they do not appear themselves.
std::vector<NestedHit> nestedHits(OdDbObjectId reference, const Rectangle& rectangle, Styles& styles,
                                  drawingdb::LayerStates& layers);

}  // namespace host
