// The editor of one reference's attributes: which attribute is current, the marks of Apply and Cancel, and the page
// with the values.
#include "torvelcmd2/attmanager/eatt_edit_dialog.h"

#include <algorithm>

#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/attributes/multiline_editing.h"
#include "torvelcmd2/attributes/prompts.h"
#include "torvelcmd2/frame/ask.h"

namespace torvel {
namespace {

constexpr wchar_t kSection[] = L"Dialogs\\EAttEdit";

enum ListColumn { kTagColumn, kPromptColumn, kValueColumn };
constexpr struct {
    unsigned title;
    const wchar_t* widthKey;
} kColumns[] = {
    {IDS_COLUMN_TAG, L"List.Tag.Width"},
    {IDS_COLUMN_PROMPT, L"List.Prompt.Width"},
    {IDS_COLUMN_VALUE, L"List.Value.Width"},
};

// As it is stored, but several lines as one and without their codes.
OdString shownValue(const OdDbAttribute& attribute) {
    if (!attribute.isMTextAttribute()) return attribute.textString();
    FieldEdit value(attribute.database());
    value.loadForReading(attribute);
    return value.text();
}

}  // namespace

// ---- the dialog

CEAttEditDlg::CEAttEditDlg(OdDbDatabase& database)
    : AttributeEditor(IDD_EATTEDIT, IDC_EATTEDIT_TAB, kSection, L"IDH_EAttEdit"),
      database_(&database),
      marks_(database_),
      listPage_(*this),
      textOptions_(*this),
      properties_(*this) {
    addPages(listPage_, textOptions_, properties_);
    setPicture(IDC_EATTEDIT_PICK, IDI_PICK_ON_SCREEN);
    setTooltip(IDC_EATTEDIT_PICK, loadText(IDS_EATTEDIT_SELECT_BLOCK));
    setMark();
}

bool CEAttEditDlg::load(OdDbObjectId referenceId, OdDbObjectId attribute) {
    const auto reference = referenceId.openIf<OdDbBlockReference>();
    if (!reference) return false;
    OdDbObjectIdArray attributes = editableAttributes(*reference);
    if (attributes.empty()) return false;
    reference_ = referenceId;
    attributes_ = std::move(attributes);
    const auto block = reference->blockTableRecord().openIf<OdDbBlockTableRecord>();
    setText(IDC_EATTEDIT_BLOCK, block ? block->name() : OdString());
    listPage_.showReference();
    const auto found = std::ranges::find(attributes_, attribute);
    setCurrentRow(found == attributes_.end() ? 0 : static_cast<int>(found - attributes_.begin()));
    return true;
}

OdDbObjectId CEAttEditDlg::current() const {
    return attributes_.empty() ? OdDbObjectId() : attributes_[static_cast<std::size_t>(row_)];
}

void CEAttEditDlg::setCurrentRow(int row) {
    row_ = row;
    lockedReason_ = refusalToEdit(current());
    showTag();
    reload();
}

void CEAttEditDlg::showTag() { setText(IDC_EATTEDIT_TAG, current().openAs<OdDbAttribute>()->tag()); }

// What was put on a locked layer can be taken from it again until another row is current: whoever goes through the
// layers with the arrow keys must not be held at that one.
void CEAttEditDlg::attributeChanged() {
    unapplied_.insert(reference_);
    redraw(current());
    listPage_.showCell();
    showTag();
}

void CEAttEditDlg::editMultiLineText() {
    const auto attribute = current().openAs<OdDbAttribute>();
    const MultiLineEdit edit = editMultiLine(*attribute, WhileEdited::kHidden);
    if (!edit.value) return;
    applyMultiLine(*edit.value, *attribute);
    attributeChanged();
}

void CEAttEditDlg::onCommand(int control, dialogs::Event) {
    switch (control) {
        case IDC_EATTEDIT_APPLY:
            return setMark();
        case IDC_EATTEDIT_SELECT:
        case IDC_EATTEDIT_PICK:
            return end(kSelectBlock);
        default:
            break;
    }
}

// The focus leaves first, so that nothing is written once the drawing is as it was.
void CEAttEditDlg::onCancel() {
    focus(dialogs::kCancelButton);
    undoToMark();
    end(dialogs::kCancelButton);
}

void CEAttEditDlg::savePlacement(const std::wstring& placement) {
    listPage_.saveColumnWidths();
    AttributeEditor::savePlacement(placement);
}

void CEAttEditDlg::setMark() {
    marks_.recordStep();
    unapplied_.clear();
}

void CEAttEditDlg::undoToMark() {
    if (!marks_.undo()) return;
    for (OdDbObjectId reference : unapplied_) redraw(reference);
}

// ---- the page with the values

CEAttEditListPage::CEAttEditListPage(CEAttEditDlg& editor)
    : EditorPage(IDD_EATTEDIT_LIST, editor, IDC_EATTEDIT_LIST), dialog_(editor), value_(&editor.database()) {
    setRichText(IDC_EATTEDIT_VALUE, &value_);
}

void CEAttEditListPage::onInit() {
    restoreColumnWidths();
    EditorPage::onInit();
}

void CEAttEditListPage::restoreColumnWidths() {
    const int width = listWidth(IDC_EATTEDIT_LIST), third = width / 3;
    std::vector<dialogs::Column> columns;
    for (const auto& [title, key] : kColumns) {
        const int usual = title == IDS_COLUMN_VALUE ? width - 2 * third - 1 : third;
        const int stored = readIntegerSetting(kSection, key, usual);
        columns.push_back({loadText(title), stored > 0 ? stored : usual});
    }
    setColumns(IDC_EATTEDIT_LIST, std::move(columns));
    hasColumns_ = true;
}

void CEAttEditListPage::saveColumnWidths() const {
    if (!hasColumns_) return;
    for (int column = 0; column <= kValueColumn; ++column)
        writeIntegerSetting(kSection, kColumns[column].widthKey, columnWidth(IDC_EATTEDIT_LIST, column));
}

void CEAttEditListPage::showReference() {
    Prompts prompts(OdDbBlockReference::blockTableRecordOf(dialog_.reference()));
    std::vector<dialogs::Row> rows;
    rows.reserve(dialog_.attributes().size());
    for (OdDbObjectId id : dialog_.attributes()) {
        const auto attribute = id.openAs<OdDbAttribute>();
        OdString tag = attribute->tag();
        OdString prompt = prompts.take(tag);
        rows.push_back({{std::move(tag), std::move(prompt), shownValue(*attribute)}});
    }
    setRows(IDC_EATTEDIT_LIST, std::move(rows));
}

void CEAttEditListPage::showCell() {
    setCell(IDC_EATTEDIT_LIST, dialog_.currentRow(), kValueColumn,
            shownValue(*dialog_.current().openAs<OdDbAttribute>()));
}

// Several lines are edited by the text editor alone.
void CEAttEditListPage::reload() {
    const auto attribute = dialog_.current().openAs<OdDbAttribute>();
    const bool multiLine = attribute->isMTextAttribute();
    if (selected(IDC_EATTEDIT_LIST) != dialog_.currentRow()) select(IDC_EATTEDIT_LIST, dialog_.currentRow());
    enableUnlessLocked(IDC_EATTEDIT_VALUE, !multiLine);
    enableUnlessLocked(IDC_EATTEDIT_EDITOR, multiLine, unheldReason(*attribute));
    if (isEnabled(IDC_EATTEDIT_VALUE))
        value_.load(*attribute);
    else
        value_.loadForReading(*attribute);
    value_.markFound();
    refreshRichText(IDC_EATTEDIT_VALUE);
    setModified(IDC_EATTEDIT_VALUE, false);
}

void CEAttEditListPage::onSelect(int, int row) { dialog_.setCurrentRow(row); }

void CEAttEditListPage::onCommand(int control, dialogs::Event event) {
    if (control == IDC_EATTEDIT_EDITOR && event == dialogs::Event::kPressed) end(CEAttEditDlg::kEditMultiLine);
}

bool CEAttEditListPage::onLeave(int control, int) {
    if (control == IDC_EATTEDIT_VALUE && isModified(IDC_EATTEDIT_VALUE)) takeValue();
    return true;
}

// A value that was only touched stays, with its fields.
void CEAttEditListPage::takeValue() {
    setModified(IDC_EATTEDIT_VALUE, false);
    if (!value_.isChanged()) return;
    value_.save(*dialog_.current().openAs<OdDbAttribute>());
    value_.markFound();
    dialog_.attributeChanged();
}

}  // namespace torvel
