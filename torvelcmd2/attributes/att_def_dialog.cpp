// The dialog of Attdef: what its controls begin with, how they hang together, and what OK refuses.
#include "torvelcmd2/attributes/att_def_dialog.h"

#include <cmath>

#include "drawingdb/block.h"
#include "drawingdb/mtext_parser.h"
#include "drawingdb/text_style.h"
#include "torvelcmd2/attributes/drawing_lists.h"
#include "torvelcmd2/attributes/tag_rules.h"
#include "torvelcmd2/attributes/values/text_escapes.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

constexpr double kLinePitch = 1.5;  // in text heights

// For the life of the loaded module, whatever drawing is open.
struct Remembered {
    unsigned modes = kLockPositionMode;
    int textStyle = -1;  // rows of the lists; -1: none selected
    int justification = -1;
};
Remembered& remembered() {
    static Remembered values;
    return values;
}

constexpr struct {
    int control;
    unsigned mode;
} kModeBoxes[] = {
    {IDC_ATTDEF_INVISIBLE, kInvisibleMode},
    {IDC_ATTDEF_CONSTANT, kConstantMode},
    {IDC_ATTDEF_VERIFY, kVerifyMode},
    {IDC_ATTDEF_PRESET, kPresetMode},
    {IDC_ATTDEF_LOCK_POSITION, kLockPositionMode},
    {IDC_ATTDEF_MULTIPLE_LINES, kMultiLineMode},
};

OdDbObjectId lastDefinition(const OdDbDatabase& database) {
    OdDbObjectId last;
    for (OdDbObjectId id : targetSpaceId(database).openAs<OdDbBlockTableRecord>()->entities())
        if (id.isKindOf(OdDbAttributeDefinition::desc())) last = id;
    return last;
}

// What the text hangs on, or its position where it has no alignment point. One at the origin counts as none.
OdGePoint3d heldPoint(const OdDbText& text) {
    const OdGePoint3d point = text.alignmentPoint();
    return point.isEqualTo(OdGePoint3d::kOrigin) ? text.position() : point;
}

}  // namespace

OdGeVector3d nextLineBelow(const OdDbText& text) {
    const double angle = text.rotation();
    const OdGeVector3d up =
        OdGeMatrix3d::planeToWorld(text.normal()) * OdGeVector3d(-std::sin(angle), std::cos(angle), 0);
    return up * (-kLinePitch * text.height());
}

// ---- what the controls begin with

CAttDefDlg::CAttDefDlg(OdDbDatabase& database)
    : ModuleDialog(IDD_ATTDEF, nullptr, L"IDH_AttDef"),
      database_(database),
      previous_(lastDefinition(database)),
      numbers_(*this, {{IDC_ATTDEF_X, NumberKind::kLength, NumberRange::kAny, IDS_INVALID_INSERTION_POINT},
                       {IDC_ATTDEF_Y, NumberKind::kLength, NumberRange::kAny, IDS_INVALID_INSERTION_POINT},
                       {IDC_ATTDEF_Z, NumberKind::kLength, NumberRange::kAny, IDS_INVALID_INSERTION_POINT},
                       {IDC_ATTDEF_HEIGHT, NumberKind::kLength, NumberRange::kPositive, IDS_INVALID_HEIGHT},
                       {IDC_ATTDEF_ROTATION, NumberKind::kAngle, NumberRange::kAny, IDS_INVALID_ROTATION},
                       {IDC_ATTDEF_WIDTH, NumberKind::kLength, NumberRange::kNotNegative, IDS_INVALID_BOUNDARY_WIDTH}}),
      default_(&database) {
    prepareButtons();
    setRichText(IDC_ATTDEF_DEFAULT, &default_);
    setModes(remembered().modes);
    if (!OdDbAttributeText::canBeMultiLine(database)) {
        setChecked(IDC_ATTDEF_MULTIPLE_LINES, false);
        enable(IDC_ATTDEF_MULTIPLE_LINES, false);
        setTooltip(IDC_ATTDEF_MULTIPLE_LINES, loadText(IDS_NO_MULTIPLE_LINES));
    }
    if (!OdDbField::canBeHeld(database)) setTooltip(IDC_ATTDEF_FIELD, loadText(IDS_NO_FIELDS));
    showMultiLine();
    // The row counts in the list that the modes call for.
    const int row = remembered().justification;
    if (!isHeldToOneLine() && row >= 0 && row < choiceCount(IDC_ATTDEF_JUSTIFICATION))
        selectJustification(static_cast<unsigned>(choiceData(IDC_ATTDEF_JUSTIFICATION, row)));
    showTextStyles();
    setHeight(firstHeight());
    setRotation(0);
    setBoundaryWidth(0);
    setInsertionPoint({});
    setChecked(IDC_ATTDEF_ON_SCREEN);
    enable(IDC_ATTDEF_BELOW, !previous_.isNull());
    showInsertionPoint();
}

void CAttDefDlg::prepareButtons() {
    static constexpr struct {
        int control;
        unsigned tooltip;
        int picture;
    } kButtons[] = {
        {IDC_ATTDEF_FIELD, IDS_ATTDEF_INSERT_FIELD, IDI_INSERT_FIELD},
        {IDC_ATTDEF_PICK_HEIGHT, IDS_ATTDEF_PICK_HEIGHT, IDI_PICK_ON_SCREEN},
        {IDC_ATTDEF_PICK_ROTATION, IDS_ATTDEF_PICK_ROTATION, IDI_PICK_ON_SCREEN},
        {IDC_ATTDEF_PICK_WIDTH, IDS_ATTDEF_PICK_WIDTH, IDI_PICK_ON_SCREEN},
    };
    for (const auto& [button, tooltip, picture] : kButtons) {
        setTooltip(button, loadText(tooltip));
        setPicture(button, picture);
    }
}

void CAttDefDlg::showTextStyles() {
    fillTextStyles(*this, IDC_ATTDEF_TEXT_STYLE, database_);
    if (remembered().textStyle < choiceCount(IDC_ATTDEF_TEXT_STYLE))
        select(IDC_ATTDEF_TEXT_STYLE, remembered().textStyle);
}

// The current one where none is selected.
OdDbObjectId CAttDefDlg::textStyle() const {
    const OdString selectedName = text(IDC_ATTDEF_TEXT_STYLE);
    return database_.findTextStyle(selectedName.empty() ? database_.headerText("$TEXTSTYLE", L"Standard")
                                                        : selectedName);
}

double CAttDefDlg::firstHeight() const {
    const auto style = textStyle().openIf<OdDbTextStyleTableRecord>();
    constexpr double kStandardHeight = 0.2;  // as new texts have it
    return style && style->textSize() > 0 ? style->textSize() : database_.headerReal("$TEXTSIZE", kStandardHeight);
}

// ---- what the command sets

void CAttDefDlg::setHeight(double height) { numbers_.show(IDC_ATTDEF_HEIGHT, height); }
void CAttDefDlg::setRotation(double rotation) { numbers_.show(IDC_ATTDEF_ROTATION, rotation); }
void CAttDefDlg::setBoundaryWidth(double width) { numbers_.show(IDC_ATTDEF_WIDTH, width); }

void CAttDefDlg::setField(const OdDbFieldPtr& field) {
    field_ = field;
    default_.value().selectAll();
    default_.value().insertField(field->copy());
    refreshRichText(IDC_ATTDEF_DEFAULT);
    setSelection(IDC_ATTDEF_DEFAULT, {default_.value().anchor(), default_.value().caret()});
}

void CAttDefDlg::editDefault() {
    const double width = numbers_.value(IDC_ATTDEF_WIDTH);
    const bool onScreen = isChecked(IDC_ATTDEF_ON_SCREEN);
    if (!multiLine_) {
        MultiLineEdit made = newMultiLine(textStyle(), drawingdb::mtextEscaped(default_.text()), width, onScreen);
        if (!made.value) return;
        multiLine_ = std::move(made.value);
        multiLine_->width = width;
        if (onScreen) setInsertionPoint(multiLine_->location);
        return showEdited();
    }
    const auto form = OdDbMText::createObject();
    form->setDatabaseDefaults(&database_);
    if (const OdDbObjectId style = textStyle()) form->setTextStyle(style);
    form->setTextHeight(numbers_.value(IDC_ATTDEF_HEIGHT));
    form->setLocation(multiLine_->location);
    form->setWidth(width);
    MultiLineEdit edit = editMultiLine(*form, WhileEdited::kAsItIs, OdGeMatrix3d::kIdentity, copyOf(multiLine_->text));
    if (!edit.value) return;
    multiLine_ = std::move(edit.value);
    setBoundaryWidth(multiLine_->width);
    showEdited();
}

// The default shows the lines as one, without their formatting.
void CAttDefDlg::showEdited() {
    const CapturedText& edited = multiLine_->text;
    default_.value().selectAll();
    default_.value().type(shownText({edited.hasField, withoutEscapes(edited.text), edited.fields}));
    multiLineShown_ = default_.text();
    refreshRichText(IDC_ATTDEF_DEFAULT);
}

// ---- what it hands over

unsigned CAttDefDlg::modes() const {
    unsigned modes = 0;
    for (const auto& [box, mode] : kModeBoxes)
        if (isChecked(box)) modes |= mode;
    return modes;
}

void CAttDefDlg::setModes(unsigned modes) {
    for (const auto& [box, mode] : kModeBoxes) setChecked(box, (modes & mode) != 0);
}

OdGePoint3d CAttDefDlg::insertionPoint() const {
    return {numbers_.value(IDC_ATTDEF_X), numbers_.value(IDC_ATTDEF_Y), numbers_.value(IDC_ATTDEF_Z)};
}

void CAttDefDlg::setInsertionPoint(const OdGePoint3d& point) {
    numbers_.show(IDC_ATTDEF_X, point.x);
    numbers_.show(IDC_ATTDEF_Y, point.y);
    numbers_.show(IDC_ATTDEF_Z, point.z);
}

DefinitionValues CAttDefDlg::values() {
    DefinitionValues values;
    values.tag = text(IDC_ATTDEF_TAG);
    values.prompt = text(IDC_ATTDEF_PROMPT);
    values.defaultText = default_.text();
    values.textStyle = text(IDC_ATTDEF_TEXT_STYLE);
    values.height = numbers_.value(IDC_ATTDEF_HEIGHT);
    values.rotation = numbers_.value(IDC_ATTDEF_ROTATION);
    values.boundaryWidth = numbers_.value(IDC_ATTDEF_WIDTH);
    if (const int row = selected(IDC_ATTDEF_JUSTIFICATION); row >= 0)
        values.justification = static_cast<unsigned>(choiceData(IDC_ATTDEF_JUSTIFICATION, row));
    values.modes = modes();
    values.onScreen = isChecked(IDC_ATTDEF_ON_SCREEN);
    values.belowPrevious = isChecked(IDC_ATTDEF_BELOW);
    values.annotative = isChecked(IDC_ATTDEF_ANNOTATIVE);
    values.insertionPoint = insertionPoint();
    values.singleLine = default_.captured();
    values.field = field_;
    values.multiLine = multiLine_;
    values.previous = previous_;
    return values;
}

// A drawing that cannot hold several lines takes them from the dialog, not from what is remembered.
bool CAttDefDlg::isHeldToOneLine() const {
    return (remembered().modes & kMultiLineMode) != 0 && !isEnabled(IDC_ATTDEF_MULTIPLE_LINES);
}

void CAttDefDlg::remember() const {
    const bool held = isHeldToOneLine();
    remembered() = {modes() | (held ? unsigned{kMultiLineMode} : 0U), selected(IDC_ATTDEF_TEXT_STYLE),
                    held ? remembered().justification : selected(IDC_ATTDEF_JUSTIFICATION)};
}

// ---- how the controls hang together

void CAttDefDlg::onCommand(int control, dialogs::Event event) {
    if (control == IDC_ATTDEF_JUSTIFICATION && event == dialogs::Event::kChosen)
        justification_ =
            static_cast<unsigned>(choiceData(IDC_ATTDEF_JUSTIFICATION, selected(IDC_ATTDEF_JUSTIFICATION)));
    if (event != dialogs::Event::kPressed) return;
    switch (control) {
        case IDC_ATTDEF_PICK_HEIGHT:
            return leaveFor(kPickHeight);
        case IDC_ATTDEF_PICK_ROTATION:
            return leaveFor(kPickRotation);
        case IDC_ATTDEF_PICK_WIDTH:
            return leaveFor(kPickWidth);
        case IDC_ATTDEF_EDITOR:
            return leaveFor(kEditDefault);
        case IDC_ATTDEF_FIELD:
            return leaveFor(kInsertField);
        case IDC_ATTDEF_MULTIPLE_LINES:
            return changeMultiLine();
        case IDC_ATTDEF_ON_SCREEN:
            return showInsertionPoint();
        case IDC_ATTDEF_BELOW:
            if (isChecked(IDC_ATTDEF_BELOW)) alignBelowPrevious();
            return showBelowPrevious();
        default:
            break;
    }
}

void CAttDefDlg::leaveFor(EndCode code) {
    remember();
    end(code);
}

// What was typed as a single line since is the multi-line text from now on.
void CAttDefDlg::changeMultiLine() {
    if (isChecked(IDC_ATTDEF_MULTIPLE_LINES) && multiLine_ && default_.text() != multiLineShown_) {
        multiLine_->text = {false, drawingdb::mtextEscaped(default_.text()), {}};
        multiLineShown_ = default_.text();
    }
    showMultiLine();
}

// A justification that the list does not have is kept for the list that has it.
void CAttDefDlg::showMultiLine() {
    const bool multiLine = isChecked(IDC_ATTDEF_MULTIPLE_LINES);
    show(IDC_ATTDEF_EDITOR, multiLine);
    setReadOnly(IDC_ATTDEF_DEFAULT, multiLine);
    default_.setReadOnly(multiLine);
    enable(IDC_ATTDEF_FIELD, !multiLine && OdDbField::canBeHeld(database_));
    fillJustifications(*this, IDC_ATTDEF_JUSTIFICATION, multiLine);
    selectJustification(justification_);
}

void CAttDefDlg::selectJustification(unsigned textId) {
    justification_ = textId;
    select(IDC_ATTDEF_JUSTIFICATION, findChoiceData(IDC_ATTDEF_JUSTIFICATION, textId));
}

void CAttDefDlg::showInsertionPoint() {
    const bool typed = !isChecked(IDC_ATTDEF_ON_SCREEN) && !isChecked(IDC_ATTDEF_BELOW);
    for (const int control :
         {IDC_ATTDEF_X_LABEL, IDC_ATTDEF_X, IDC_ATTDEF_Y_LABEL, IDC_ATTDEF_Y, IDC_ATTDEF_Z_LABEL, IDC_ATTDEF_Z})
        enable(control, typed);
}

void CAttDefDlg::alignBelowPrevious() {
    const auto previous = previous_.openAs<OdDbAttributeDefinition>();
    setChecked(IDC_ATTDEF_ON_SCREEN, false);
    // The dialog's rotation counts from the user's X axis, that of a text from its plane's.
    setRotation(previous->rotation() - textOrientation(0, database_).rotation);
    setInsertionPoint(heldPoint(*previous) + nextLineBelow(*previous));
    setHeight(previous->height());
    if (const auto style = previous->textStyle().openIf<OdDbTextStyleTableRecord>())
        if (const int row = findChoice(IDC_ATTDEF_TEXT_STYLE, style->name()); row >= 0)
            select(IDC_ATTDEF_TEXT_STYLE, row);
    const Justification* const justification = findJustification(previous->horizontalMode(), previous->verticalMode());
    selectJustification(justification ? justification->textId : 0);
}

void CAttDefDlg::showBelowPrevious() {
    const bool free = !isChecked(IDC_ATTDEF_BELOW);
    for (const int control : {IDC_ATTDEF_ON_SCREEN, IDC_ATTDEF_TEXT_STYLE, IDC_ATTDEF_JUSTIFICATION})
        enable(control, free);
    showInsertionPoint();
}

// ---- OK

bool CAttDefDlg::onLeave(int control, int next) {
    return numbers_.leave(control, next) != NumberFields::Left::kRefused;
}

void CAttDefDlg::onOk() {
    if (const unsigned refusal = tagRefusal(kDefinitionTagRule, text(IDC_ATTDEF_TAG))) {
        showBox(hostapi::kErrorBox, loadText(refusal));
        focus(IDC_ATTDEF_TAG);
        return selectAll(IDC_ATTDEF_TAG);
    }
    if (!numbers_.takeAll()) return;
    remember();
    end(dialogs::kOkButton);
}

}  // namespace torvel
