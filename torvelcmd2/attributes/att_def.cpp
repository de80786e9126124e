#include "torvelcmd2/attributes/att_def.h"

#include <cmath>
#include <utility>

#include "drawingdb/block.h"
#include "drawingdb/text_metrics.h"
#include "drawingdb/text_style.h"
#include "torvelcmd2/attributes/att_def_dialog.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

using OdDbAttributeDefinitionPtr = OdSmartPtr<OdDbAttributeDefinition>;

// ---- the dialog, and what its buttons want from the screen

// From a first to a second point. False when either was cancelled.
bool pickLength(HostEdInput& input, double& length) {
    OdGePoint3d from;
    return askPoint(input, loadText(IDS_SPECIFY_START_POINT), from) == hostapi::kValue &&
           input.getDistance(&from, length, loadText(IDS_SPECIFY_SECOND_POINT).c_str(), nullptr,
                             hostapi::kPlainPrompt | hostapi::kNotNegative, 0) == hostapi::kValue;
}

bool pickAngle(HostEdInput& input, double& angle) {
    OdGePoint3d from;
    return askPoint(input, loadText(IDS_SPECIFY_START_POINT), from) == hostapi::kValue &&
           input.getAngle(angle, loadText(IDS_SPECIFY_SECOND_POINT).c_str(), nullptr, hostapi::kPlainPrompt,
                          reinterpret_cast<std::uintptr_t>(&from)) == hostapi::kValue;
}

OdDbFieldPtr newField() {
    const ModuleFunction insert(hostapi::insertField);
    OdDbFieldPtr field;
    return insert && insert(field) ? field : OdDbFieldPtr();
}

// Until the user wants the definition, or no more. Nothing after a cancel.
std::optional<DefinitionValues> askValues(const RunFrame& frame) {
    CAttDefDlg dialog(*frame.database);
    for (;;) {
        double number = 0;
        switch (dialog.runModal()) {
            case dialogs::kOkButton:
                return dialog.values();
            case CAttDefDlg::kPickHeight:
                if (pickLength(*frame.input, number)) dialog.setHeight(number);
                break;
            case CAttDefDlg::kPickRotation:
                if (pickAngle(*frame.input, number)) dialog.setRotation(number);
                break;
            case CAttDefDlg::kPickWidth:
                if (pickLength(*frame.input, number)) dialog.setBoundaryWidth(number);
                break;
            case CAttDefDlg::kEditDefault:
                dialog.editDefault();
                break;
            case CAttDefDlg::kInsertField:
                if (const OdDbFieldPtr field = newField()) dialog.setField(field);
                break;
            default:
                return std::nullopt;
        }
    }
}

// ---- the two points of Align and Fit

bool askBaseline(const RunFrame& frame, DefinitionValues& values, OdGePoint3d& end) {
    OdGePoint3d& start = values.insertionPoint;
    if (askPoint(*frame.input, loadText(IDS_FIRST_BASELINE_ENDPOINT), start) != hostapi::kValue ||
        askPoint(*frame.input, loadText(IDS_SECOND_BASELINE_ENDPOINT), end, &start) != hostapi::kValue)
        return false;
    const OdGeVector3d along = (end - start).normal();
    values.rotation = std::atan2(along.y, along.x);
    return true;
}

// Below the previous definition. Align takes over its height.
OdGePoint3d baselineBelow(const OdDbAttributeDefinition& previous, bool align, DefinitionValues& values,
                          OdDbDatabase& database) {
    const OdGeVector3d below = nextLineBelow(previous);
    values.insertionPoint = previous.position() + below;
    values.rotation = previous.rotation() - textOrientation(0, database).rotation;
    if (align) values.height = previous.height();
    return previous.alignmentPoint() + below;
}

// Between two points the length would give the height; here the height gives the second point.
OdGePoint3d endOfTag(const OdDbAttributeDefinition& definition) {
    const double angle = definition.rotation();
    const OdGeVector3d along =
        OdGeMatrix3d::planeToWorld(definition.normal()) * OdGeVector3d(std::cos(angle), std::sin(angle), 0);
    return definition.position() +
           along * drawingdb::textExtents(definition.tag(), definition.height(), definition.widthFactor()).width;
}

// ---- the definition

void setModes(OdDbAttributeDefinition& definition, unsigned modes) {
    definition.setConstant((modes & kConstantMode) != 0);
    definition.setInvisible((modes & kInvisibleMode) != 0);
    definition.setPreset((modes & kPresetMode) != 0);
    definition.setVerifiable((modes & kVerifyMode) != 0);
    definition.setLockPositionInBlock((modes & kLockPositionMode) != 0);
}

void setTextStyle(OdDbAttributeDefinition& definition, OdDbObjectId id) {
    const auto style = id.openIf<OdDbTextStyleTableRecord>();
    if (!style) return;
    definition.setTextStyle(id);
    definition.setOblique(style->obliquingAngle());
}

void makeMultiLine(OdDbAttributeDefinition& definition, double width) {
    definition.convertIntoMTextAttributeDefinition(true);
    if (width <= 0) return;
    const OdSmartPtr<OdDbMText> text = definition.getMTextAttributeDefinition();
    text->setWidth(width);
    definition.setMTextAttributeDefinition(*text);
}

OdDbAttributeDefinitionPtr newDefinition(OdDbDatabase& database, const DefinitionValues& values,
                                         const Justification& justification) {
    auto definition = OdDbAttributeDefinition::createObject();
    definition->setDatabaseDefaults(&database);
    const TextOrientation orientation = textOrientation(values.rotation, database);
    definition->setNormal(orientation.normal);
    definition->setHeight(values.height);
    setModes(*definition, values.modes);
    definition->setPosition(values.insertionPoint);
    definition->setTag(values.tag);
    definition->setTextString(values.defaultText);
    definition->setPrompt(values.prompt);
    justify(*definition, justification);
    definition->setRotation(orientation.rotation);
    setTextStyle(*definition, database.findTextStyle(values.textStyle));
    if ((values.modes & kMultiLineMode) != 0) makeMultiLine(*definition, values.boundaryWidth);
    if (values.annotative) definition->setAnnotative(true);
    // Last, since until now the position was where the text is held.
    definition->setAlignmentPoint(values.insertionPoint);
    return definition;
}

// ---- its place

// The tag follows the cursor.
class AttDefTracker final : public HostEdPointTracker {
  public:
    explicit AttDefTracker(const OdSmartPtr<OdDbText>& preview) : HostEdPointTracker(preview) {}

    bool filterEvent(const HostInputEvent& event, const OdGePoint3d&) override {
        if (event.kind != HostInputEvent::kPointMoved) return false;
        auto& preview = static_cast<OdDbText&>(*entity());
        preview.setPosition(event.cursor);
        preview.setAlignmentPoint(event.cursor);
        return true;
    }
};

OdSmartPtr<OdDbText> newPreview(OdDbDatabase& database, const OdDbAttributeDefinition& definition) {
    auto preview = OdDbText::createObject();
    preview->setDatabaseDefaults(&database);
    preview->setTextString(definition.tag());
    preview->setNormal(definition.normal());
    preview->setPosition(definition.position());
    if (const OdDbObjectId style = definition.textStyle()) preview->setTextStyle(style);
    preview->setOblique(definition.oblique());
    preview->setHeight(definition.height());
    preview->setAlignmentPoint(definition.alignmentPoint());
    preview->setRotation(definition.rotation());
    preview->setHorizontalMode(definition.horizontalMode());
    preview->setVerticalMode(definition.verticalMode());
    return preview;
}

bool askInsertionPoint(const RunFrame& frame, const OdDbAttributeDefinition& definition, OdGePoint3d& point) {
    const OdSmartPtr<OdDbText> preview = newPreview(*frame.database, definition);
    AttDefTracker tracker(preview);
    frame.input->setCurrentEntity(hostapi::kNewEntity, preview.get());
    return askPoint(*frame.input, loadText(IDS_SPECIFY_START_POINT), point, nullptr, &tracker) == hostapi::kValue;
}

// ---- its default, which may have fields only in the drawing

void setDefault(OdDbAttributeDefinition& definition, const DefinitionValues& values) {
    if ((values.modes & kMultiLineMode) != 0) {
        if (values.multiLine) applyText(values.multiLine->text, definition);
        return definition.updateMTextAttributeDefinition();
    }
    if (values.field) applyText({true, drawingdb::fieldIndexMarker(0), {values.field}}, definition);
    // What the control shows in the end counts, also when that field was deleted from it.
    applyText(values.singleLine, definition);
}

// False when the user cancelled it.
bool define(const RunFrame& frame, DefinitionValues values) {
    OdDbDatabase& database = *frame.database;
    const OdDbObjectId space = targetSpaceId(database);
    const Justification* const chosen = findJustification(values.justification);
    const Justification& justification = chosen ? *chosen : *findJustification(OdDb::kTextLeft, OdDb::kTextBase);

    const bool aligns = justification.horizontal == OdDb::kTextAlign;
    std::optional<OdGePoint3d> end;  // of a baseline
    if (justification.isBetweenPoints() && values.belowPrevious)
        end = baselineBelow(*values.previous.openAs<OdDbAttributeDefinition>(), aligns, values, database);
    else if (justification.isBetweenPoints() && !askBaseline(frame, values, end.emplace()))
        return false;
    if ((values.modes & kMultiLineMode) != 0 && values.multiLine)
        if (OdString contents = shownText(values.multiLine->text); !contents.empty())
            values.defaultText = std::move(contents);

    const OdDbAttributeDefinitionPtr definition = newDefinition(database, values, justification);
    if (values.onScreen && !end && !askInsertionPoint(frame, *definition, values.insertionPoint)) return false;
    definition->setPosition(values.insertionPoint);
    if (aligns && values.belowPrevious) end = endOfTag(*definition);
    definition->setAlignmentPoint(end.value_or(values.insertionPoint));

    const OdDbObjectId appended =
        space.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(definition.get());
    if (appended.isNull()) return false;
    setDefault(*definition, values);
    return true;
}

}  // namespace

CMD_RUNSTATUS CAttdefCmd::run() {
    setRunStatus(kCommandRunning);
    const ModuleResources resources;
    const RunFrame frame = reachDocument();
    std::optional<DefinitionValues> values = askValues(frame);
    const bool defined = values && define(frame, std::move(*values));
    return setRunStatus(defined ? kCommandFinished : kCommandCancelled);
}

}  // namespace torvel
