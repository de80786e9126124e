// The justifications of text as the attribute dialogs offer them.
#pragma once

#include "dialogs/dialog.h"
#include "drawingdb/attribute.h"

namespace torvel {

struct Justification {
    unsigned textId;  ///< its text in the string table, and its data in a list
    int horizontal;   ///< modes of OdDb::TextHorzMode and OdDb::TextVertMode
    int vertical;
    int attachment;  ///< of multi-line text; 0: multi-line text has no such justification

    bool isLeft() const { return horizontal == OdDb::kTextLeft && vertical == OdDb::kTextBase; }
    /// Align and Fit: between a first and a second point.
    bool isBetweenPoints() const { return horizontal == OdDb::kTextAlign || horizontal == OdDb::kTextFit; }
};

/// Null when there is none.
const Justification* findJustification(unsigned textId);
const Justification* findJustification(int horizontal, int vertical);

const Justification* justificationOf(const OdDbAttributeText& attribute);

/// Fills a list of choices: fifteen for single-line text, nine for multi-line text. Nothing is selected afterwards.
void fillJustifications(dialogs::Dialog& dialog, int list, bool multiLine);

/// Sets the modes. Text that was left justified hangs on its position then; Align and Fit want their second point from
/// the caller.
void justify(OdDbText& text, const Justification& justification);
/// Sets the attachment, which there must be, and moves the location so that the text stays where it is.
void justify(OdDbMText& text, const Justification& justification);

}  // namespace torvel
