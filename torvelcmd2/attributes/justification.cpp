#include "torvelcmd2/attributes/justification.h"

#include <algorithm>
#include <iterator>

#include "torvelcmd2/frame/command.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

// In the order of the list; those of multi-line text come last.
constexpr Justification kRows[] = {
    {IDS_JUSTIFY_LEFT, OdDb::kTextLeft, OdDb::kTextBase, 0},
    {IDS_JUSTIFY_ALIGN, OdDb::kTextAlign, OdDb::kTextBase, 0},
    {IDS_JUSTIFY_FIT, OdDb::kTextFit, OdDb::kTextBase, 0},
    {IDS_JUSTIFY_CENTER, OdDb::kTextCenter, OdDb::kTextBase, 0},
    {IDS_JUSTIFY_MIDDLE, OdDb::kTextMid, OdDb::kTextBase, 0},
    {IDS_JUSTIFY_RIGHT, OdDb::kTextRight, OdDb::kTextBase, 0},
    {IDS_JUSTIFY_TOP_LEFT, OdDb::kTextLeft, OdDb::kTextTop, 1},
    {IDS_JUSTIFY_TOP_CENTER, OdDb::kTextCenter, OdDb::kTextTop, 2},
    {IDS_JUSTIFY_TOP_RIGHT, OdDb::kTextRight, OdDb::kTextTop, 3},
    {IDS_JUSTIFY_MIDDLE_LEFT, OdDb::kTextLeft, OdDb::kTextVertMid, 4},
    {IDS_JUSTIFY_MIDDLE_CENTER, OdDb::kTextCenter, OdDb::kTextVertMid, 5},
    {IDS_JUSTIFY_MIDDLE_RIGHT, OdDb::kTextRight, OdDb::kTextVertMid, 6},
    {IDS_JUSTIFY_BOTTOM_LEFT, OdDb::kTextLeft, OdDb::kTextBottom, 7},
    {IDS_JUSTIFY_BOTTOM_CENTER, OdDb::kTextCenter, OdDb::kTextBottom, 8},
    {IDS_JUSTIFY_BOTTOM_RIGHT, OdDb::kTextRight, OdDb::kTextBottom, 9},
};

template <class Test>
const Justification* findRow(Test test) {
    const auto* const row = std::ranges::find_if(kRows, test);
    return row == std::end(kRows) ? nullptr : row;
}

// Where an attachment lies in a box: 0 to 1 from left to right, and from top to bottom.
double across(int attachment) { return (attachment - 1) % 3 / 2.0; }
double down(int attachment) {
    const int row = (attachment - 1) / 3;
    return row / 2.0;
}

}  // namespace

const Justification* findJustification(unsigned textId) {
    return findRow([textId](const Justification& row) { return row.textId == textId; });
}

const Justification* findJustification(int horizontal, int vertical) {
    return findRow([=](const Justification& row) { return row.horizontal == horizontal && row.vertical == vertical; });
}

const Justification* justificationOf(const OdDbAttributeText& attribute) {
    const OdSmartPtr<OdDbMText> lines = attribute.mtextCopy();
    return lines ? findJustification(lines->horizontalMode(), lines->verticalMode())
                 : findJustification(attribute.horizontalMode(), attribute.verticalMode());
}

void fillJustifications(dialogs::Dialog& dialog, int list, bool multiLine) {
    dialog.clearChoices(list);
    for (const Justification& row : kRows)
        if (!multiLine || row.attachment != 0) dialog.addChoice(list, loadText(row.textId), row.textId);
}

void justify(OdDbText& text, const Justification& justification) {
    if (!text.isJustified()) text.setAlignmentPoint(text.position());
    text.setHorizontalMode(justification.horizontal);
    text.setVerticalMode(justification.vertical);
    if (!justification.isLeft()) text.setPosition(text.alignmentPoint());
}

void justify(OdDbMText& text, const Justification& justification) {
    const auto [topLeft, topRight, bottomLeft, bottomRight] = text.layout().boundingPoints;
    const OdGePoint2d corner = topLeft + (topRight - topLeft) * across(justification.attachment) +
                               (bottomLeft - topLeft) * down(justification.attachment);
    const OdGePoint3d location = text.layoutToWorld() * OdGePoint3d(corner.x, corner.y, 0);
    text.setAttachment(justification.attachment);
    text.setLocation(location);
}

}  // namespace torvel
