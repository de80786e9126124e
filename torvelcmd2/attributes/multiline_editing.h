// Multi-line values go through the text editor module, which edits a multi-line text that lies in the drawing: a
// temporary one, in a scratch group, so that nothing of it stays whatever the user answers. Only values come out.
#pragma once

#include <optional>

#include "torvelcmd2/attributes/values/text_transfer.h"
#include "torvelcmd2/frame/undo_scope.h"

namespace torvel {

/// What is seen of an object while its text is edited in place of it.
enum class WhileEdited {
    kAsItIs,
    kHidden,  ///< so that only the editor's text shows
    kShown,   ///< also when it is invisible at other times
};

/// A scratch group in which an object is shown otherwise; it is seen as before at the end.
class ScratchEditing {
  public:
    /// The object must be in a drawing.
    ScratchEditing(const OdDbEntity& object, WhileEdited how);

  private:
    // Comes back after the group: members end in the reverse order.
    struct Redraw {
        OdDbObjectId object;
        ~Redraw();
    };
    Redraw redraw_;
    ScratchGroup group_;
};

/// A multi-line value as the editor left it.
struct MultiLineValue {
    CapturedText text;
    double width = 0;      ///< in the coordinates of the source
    OdGePoint3d location;  ///< of a new text
};

struct MultiLineEdit {
    bool hasEditor = false;               ///< the module and its entry were there
    std::optional<MultiLineValue> value;  ///< nothing when the user left the text alone
};

/// Lets the user edit the value of `source`: a multi-line attribute, attribute definition or text. `transform` takes
/// its coordinates to those of the space where the user draws. `value`, if given, is edited in place of the source's
/// own; its fields are used up. The source stays as it is, to the byte. A source in no drawing belongs to the active
/// one, and cannot be hidden. A single-line source is left alone.
MultiLineEdit editMultiLine(const OdDbEntity& source, WhileEdited how,
                            const OdGeMatrix3d& transform = OdGeMatrix3d::kIdentity,
                            std::optional<CapturedText> value = std::nullopt);

/// Lets the user make a new multi-line value. With `onScreen` its location is where the user pointed, in world
/// coordinates, else the origin.
MultiLineEdit newMultiLine(OdDbObjectId style, const OdString& text, double width, bool onScreen);

/// Makes it the value and the width of a multi-line attribute, attribute definition or text. What is so already is not
/// written. False when nothing was. The value's fields are used up.
bool applyMultiLine(const MultiLineValue& value, OdDbEntity& target);

}  // namespace torvel
