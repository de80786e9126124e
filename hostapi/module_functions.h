// The functions that the command module exports for its host and for other modules. They are looked up by name like the
// services of a host (services.h), in the module that is loaded already:
//
//     if (auto* edit = base::findFunction<int(OdDbObjectId&, OdDbObjectId&)>(
//             base::findLoadedModule(base::libraryFileName(hostapi::doEAttEdit.library)), hostapi::doEAttEdit.name))
//         edit(reference, attribute);
//
// Those that show dialogs switch the resources to the module's own while they run.
#pragma once

#include <boost/tuple/tuple.hpp>
#include <string>
#include <vector>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "hostapi/services.h"

namespace hostapi {

/// Definitions with the values that their attributes shall have, in the order in which they are shown.
using AttributeValues = std::vector<boost::tuple<OdSmartPtr<OdDbAttributeDefinition>, OdString>>;

// ---- editing the values of attributes

/// The attributes of a reference. 1 after OK; 0 after Cancel, and when there is nothing to edit.
inline constexpr Service<int(const OdDbObjectId& blockReference)> ShowAttEditDialogEx{kCommandModule,
                                                                                      "ShowAttEditDialogEx"};
/// Attributes that are yet to be made, of a block that is named. `transform` takes the block's coordinates to the
/// world's. After OK (1) the values are those that the user gave, and what a string cannot hold is in the definition
/// (docs/hosts.md tells what to do about that); after Cancel (0) all is as it was.
inline constexpr Service<int(const OdString& blockName, AttributeValues& values, const OdGeMatrix3d& transform)>
    ShowAttEditDialog{kCommandModule, "ShowAttEditDialog"};
/// Values, text options and properties of one reference's attributes, with `attribute` (or null) current at first. Both
/// ids follow when the user goes on to another reference. 0 after OK; 1 after Cancel, and when no reference was chosen.
inline constexpr Service<int(OdDbObjectId& blockReference, OdDbObjectId& attribute)> doEAttEdit{kCommandModule,
                                                                                                "doEAttEdit"};
/// Whether a pick, or with a null one a pick that the user is asked for, meets an attribute of a reference that lies in
/// no other reference. kValue: it does, and both ids are reported (either may be null). kCancel: the user cancelled.
/// kEmpty: it met anything else, or nothing.
inline constexpr Service<int(const Pick* pick, OdDbObjectId* blockReference, OdDbObjectId* attribute)> isAttRefSelected{
    kCommandModule, "isAttRefSelected"};

// ---- editing definitions

/// Tag, prompt and default of an attribute definition. 1 after OK; 0 otherwise, and for what is no definition.
inline constexpr Service<int(const OdDbObjectId& definition)> ShowAttDDEIT{kCommandModule, "ShowAttDDEIT"};

// ---- without dialogs

/// The plain text of an escaped field or multi-line text; a null text is an empty one.
inline constexpr Service<std::wstring(const wchar_t* text)> deEscapeString{kCommandModule, "deEscapeString"};
/// Explodes a reference, which is open for write, into `owner`, the block record that it lies in, and makes texts of
/// its attributes. False, and nothing changed, when it cannot be exploded.
inline constexpr Service<bool(OdDbBlockReference& reference, OdDbBlockTableRecord& owner)> burstBlockReference{
    kCommandModule, "burstBlockReference"};
/// Finds, loads and draws a slide: "NAME" or "LIBRARY(SLIDE)". Throws CXException.
inline constexpr Service<void(const CXStringW& name, slidePainter* painter)> loadAndDrawVSlide{kCommandModule,
                                                                                               "loadAndDrawVSlide"};

}  // namespace hostapi
