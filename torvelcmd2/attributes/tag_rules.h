// What the dialogs refuse as the tag of an attribute. Each has its own words and its own idea of a blank; they differ
// on purpose, and stand side by side here so that the differences are seen.
#pragma once

#include "drawingdb/object_id.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {

struct TagRule {
    unsigned emptyText;  ///< string ids of what the user is told
    unsigned blankText;
    bool refusesTabs;  ///< else a tab is like any other character
};

/// Attdef, and the plain redefinition dialog: an error box on OK.
inline constexpr TagRule kDefinitionTagRule{IDS_TAG_IS_EMPTY, IDS_TAG_HAS_SPACES, false};
/// The redefinition dialog that knows fields: a notification when the field is left.
inline constexpr TagRule kRedefinitionTagRule{IDS_TAG_IS_NULL_OR_HAS_SPACES, IDS_TAG_IS_NULL_OR_HAS_SPACES, true};
/// Edit Attribute of the Block Attribute Manager: a message when the field is left.
inline constexpr TagRule kManagerTagRule{IDS_TAG_MUST_BE_PROVIDED, IDS_TAG_CAN_NOT_INCLUDE_SPACES, false};

/// The string id of what the user is told of this tag; 0 when it is good.
unsigned tagRefusal(const TagRule& rule, const OdString& tag);

}  // namespace torvel
