// The prompts of a block's attribute definitions, for the attributes of a reference.
#pragma once

#include <deque>
#include <unordered_map>

#include "drawingdb/object_id.h"

namespace torvel {

/// Of several definitions with one tag each is taken once, in their order. Constant definitions do not count:
/// references have no attributes of them.
class Prompts {
  public:
    explicit Prompts(OdDbObjectId block);

    /// For the next attribute with that tag, whatever its case; empty when no definition is left.
    OdString take(const OdString& tag);

  private:
    std::unordered_map<OdString, std::deque<OdString>> ofTag_;  // by the tag in capitals
};

}  // namespace torvel
