// Choosing a reference with attributes, or one attribute of it, by a pick.
#pragma once

#include <vector>

#include "hostapi/selection.h"

namespace torvel {

/// Asks for a reference whose block has attributes, until one is picked. Returns an input result: kValue with
/// `blockRef` set; anything else with `blockRef` null. `attribute` is set only when the pick met an attribute of that
/// reference, and is left as it was otherwise: who wants to know clears it before. With `editableOnly` a definition
/// that is not constant must be among them. With `allowNone` an empty answer ends it with kEmpty; without, it is asked
/// again.
int selectAttributedBlock(OdDbObjectId& blockRef, OdDbObjectId& attribute, bool editableOnly, bool allowNone);

/// Takes attributes alone, and keeps the references that hold the one it took.
class AttrRefSelReactor final : public HostGsSelectionReactor {
  public:
    bool selected(OdDbObjectId entity, const OdDbObjectId* containers, std::size_t containerCount) override;

    OdDbObjectId attribute() const { return attribute_; }
    /// Outermost first, down to where one is no reference.
    const std::vector<OdDbObjectId>& path() const { return path_; }

  private:
    OdDbObjectId attribute_;
    std::vector<OdDbObjectId> path_;
};

}  // namespace torvel

/// Exported. Whether a pick, or with a null `pick` one that the user is asked for, meets an attribute of a reference
/// that lies in no other. kValue: it does, and both are reported (either may be null). kCancel: the user cancelled.
/// kEmpty: it met anything else, or nothing.
extern "C" int isAttRefSelected(const hostapi::Pick* pick, OdDbObjectId* blockRef, OdDbObjectId* attribute);
