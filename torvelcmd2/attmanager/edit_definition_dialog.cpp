#include "torvelcmd2/attmanager/edit_definition_dialog.h"

#include <algorithm>

#include "base/format.h"
#include "drawingdb/block.h"
#include "torvelcmd2/attmanager/definition_columns.h"
#include "torvelcmd2/attmanager/sync_block.h"
#include "torvelcmd2/attributes/multiline_editing.h"
#include "torvelcmd2/attributes/tag_rules.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/frame/progress.h"

namespace torvel {

// ---- the page "Attribute"

namespace {

constexpr struct {
    int box;
    bool (OdDbAttributeText::*get)() const;
    void (OdDbAttributeText::*set)(bool);
} kModes[] = {
    {IDC_DEFINITION_INVISIBLE, &OdDbAttributeText::isInvisible, &OdDbAttributeText::setInvisible},
    {IDC_DEFINITION_CONSTANT, &OdDbAttributeText::isConstant, &OdDbAttributeText::setConstant},
    {IDC_DEFINITION_VERIFY, &OdDbAttributeText::isVerifiable, &OdDbAttributeText::setVerifiable},
    {IDC_DEFINITION_PRESET, &OdDbAttributeText::isPreset, &OdDbAttributeText::setPreset},
};

}  // namespace

CAttDefEditPage::CAttDefEditPage(AttributeEditor& editor)
    : AttributePage(IDD_DEFINITION_PAGE, editor, IDC_DEFINITION_INVISIBLE), default_(&editor.database()) {
    setRichText(IDC_DEFINITION_DEFAULT, &default_);
    if (OdDbAttributeText::canBeMultiLine(editor.database())) return;
    enable(IDC_DEFINITION_MULTIPLE_LINES, false);
    setTooltip(IDC_DEFINITION_MULTIPLE_LINES, loadText(IDS_NO_MULTIPLE_LINES));
}

OdSmartPtr<OdDbAttributeDefinition> CAttDefEditPage::definition() const {
    return editor().current().openAs<OdDbAttributeDefinition>();
}

void CAttDefEditPage::showAttribute(const OdDbAttributeText& attribute) {
    for (const auto& [box, get, set] : kModes) setChecked(box, (attribute.*get)());
    setChecked(IDC_DEFINITION_MULTIPLE_LINES, attribute.isMultiLine());
    setText(IDC_DEFINITION_TAG, attribute.tag());
    setText(IDC_DEFINITION_PROMPT, definition()->prompt());
    showDefault(attribute);
}

// Several lines are edited by the text editor alone.
void CAttDefEditPage::showDefault(const OdDbAttributeText& attribute) {
    const bool single = !attribute.isMultiLine();
    single ? default_.load(attribute) : default_.loadForReading(attribute);
    enable(IDC_DEFINITION_DEFAULT, single);
    const bool hasFields = OdDbField::canBeHeld(editor().database());
    enable(IDC_DEFINITION_EDITOR, !single || hasFields);
    setTooltip(IDC_DEFINITION_EDITOR,
               !single ? OdString() : loadText(hasFields ? IDS_ATTDEF_INSERT_FIELD : IDS_NO_FIELDS));
    default_.markFound();
    refreshRichText(IDC_DEFINITION_DEFAULT);
    setModified(IDC_DEFINITION_DEFAULT, false);
}

void CAttDefEditPage::onCommand(int control, dialogs::Event event) {
    if (event != dialogs::Event::kPressed) return;
    if (control != IDC_DEFINITION_EDITOR) return takeMode(control);
    if (isChecked(IDC_DEFINITION_MULTIPLE_LINES)) return end(CBMEADlg::kEditMultiLine);
    insertField();
}

void CAttDefEditPage::takeMode(int box) {
    const bool on = isChecked(box);
    if (box == IDC_DEFINITION_MULTIPLE_LINES) {
        write([on](OdDbAttributeText& text) { text.setMultiLine(on); });
        return showDefault(*definition());
    }
    for (const auto& mode : kModes)
        if (mode.box == box) write([&](OdDbAttributeText& text) { (text.*mode.set)(on); });
}

bool CAttDefEditPage::onLeave(int control, int next) {
    // Nothing is taken on the way to Cancel, and no tag on the way to Help, which no refusal may bar. Who does not
    // press there finds what the definition has.
    if (next == dialogs::kCancelButton || (control == IDC_DEFINITION_TAG && next == dialogs::kHelpButton)) {
        showAttribute(*definition());
        return true;
    }
    if (control == IDC_DEFINITION_TAG) return takeTag();
    if (control == IDC_DEFINITION_PROMPT) takePrompt();
    // Its own button goes on with what was typed, and takes it when it was not pressed.
    if (control == IDC_DEFINITION_EDITOR || (control == IDC_DEFINITION_DEFAULT && next != IDC_DEFINITION_EDITOR))
        takeDefault();
    return true;
}

// As it was typed: small letters stay small.
bool CAttDefEditPage::takeTag() {
    const OdString tag = text(IDC_DEFINITION_TAG);
    if (const unsigned refusal = tagRefusal(kManagerTagRule, tag)) {
        showBox(hostapi::kWarningBox, loadText(refusal));
        return false;
    }
    if (tag == definition()->tag()) return true;
    write([&](OdDbAttributeText& text) { text.setTag(tag); });
    return true;
}

void CAttDefEditPage::takePrompt() {
    const OdString prompt = text(IDC_DEFINITION_PROMPT);
    if (prompt == definition()->prompt()) return;
    write([&](OdDbAttributeText& text) { static_cast<OdDbAttributeDefinition&>(text).setPrompt(prompt); });
}

void CAttDefEditPage::takeDefault() {
    if (!isModified(IDC_DEFINITION_DEFAULT)) return;
    setModified(IDC_DEFINITION_DEFAULT, false);
    if (!default_.isChanged()) return;
    write([&](OdDbAttributeText& text) { default_.save(text); });
    default_.markFound();
}

void CAttDefEditPage::insertField() {
    const dialogs::TextSelection selected = selection(IDC_DEFINITION_DEFAULT);
    default_.value().select(selected.anchor, selected.caret);
    OdString unused;
    default_.value().run(FieldEdit::kInsertField, unused);
    refreshRichText(IDC_DEFINITION_DEFAULT);
    setSelection(IDC_DEFINITION_DEFAULT, {default_.value().anchor(), default_.value().caret()});
    setModified(IDC_DEFINITION_DEFAULT, true);
    takeDefault();
}

// ---- the dialog

namespace {

// Two spellings, of which hosts that tell letters' cases apart make two sections.
constexpr wchar_t kPlaceSection[] = L"Dialogs\\BATTMAN.EA";
constexpr wchar_t kPreviewSection[] = L"Dialogs\\BAttMan.EA";
constexpr wchar_t kPageKey[] = L"CurPage";
constexpr wchar_t kPreviewKey[] = L"AutoPreviewChanges";

}  // namespace

CBMEADlg::CBMEADlg(EditedBlock& block, OdDbObjectId definition)
    : AttributeEditor(IDD_EDIT_DEFINITION, IDC_DEFINITION_TAB, kPlaceSection, L"IDH_BattMan"),
      block_(block),
      definition_(definition),
      level_(block.undo().level()),
      attributePage_(*this),
      textOptionsPage_(*this),
      propertiesPage_(*this) {
    addPages(attributePage_, textOptionsPage_, propertiesPage_);
    setCurrentPage(std::clamp(readIntegerSetting(kPlaceSection, kPageKey, 0), 0, 2));
    setText(IDC_DEFINITION_BLOCK,
            base::formatPositional(loadText(IDS_ACTIVE_BLOCK), block.block().openAs<OdDbBlockTableRecord>()->name()));
    // A preview changes references.
    const bool canPreview = readIntegerSetting(kManagerSection, kApplyChangesKey, 1) != 0;
    setChecked(IDC_DEFINITION_PREVIEW, canPreview && readIntegerSetting(kPreviewSection, kPreviewKey, 1) != 0);
    enable(IDC_DEFINITION_PREVIEW, canPreview);
}

bool CBMEADlg::edit() {
    int code = runModal();
    for (; code == kEditMultiLine; code = runModal()) editMultiLine();
    return code == dialogs::kOkButton;
}

void CBMEADlg::editMultiLine() {
    const auto definition = definition_.openAs<OdDbAttributeDefinition>();
    const MultiLineEdit edit = torvel::editMultiLine(*definition, WhileEdited::kAsItIs);
    if (!edit.value) return;
    beforeWrite();
    applyMultiLine(*edit.value, *definition);
    attributeChanged();
}

void CBMEADlg::beforeWrite() {
    takeBackPreview();
    block_.undo().recordStep();
}

void CBMEADlg::attributeChanged() {
    if (isChecked(IDC_DEFINITION_PREVIEW)) preview();
}

void CBMEADlg::preview() {
    block_.undo().recordStep();
    previewed_ = true;
    try {
        syncBlockReferences(block_.block(), block_.definitions());
    } catch (const StoppedByUser&) {
        // It was only a look.
        setChecked(IDC_DEFINITION_PREVIEW, false);
        return takeBackPreview();
    }
    showDrawing(Drawing::kAsItStands);
}

void CBMEADlg::takeBackPreview() {
    if (!previewed_) return;
    block_.undo().undo();
    previewed_ = false;
    showDrawing(Drawing::kAsItStands);
}

void CBMEADlg::onCommand(int control, dialogs::Event) {
    if (control == IDC_DEFINITION_PREVIEW) isChecked(IDC_DEFINITION_PREVIEW) ? preview() : takeBackPreview();
}

// Where there can be no preview the box does not show what the user wants.
void CBMEADlg::saveSettings() const {
    writeIntegerSetting(kPlaceSection, kPageKey, currentPage());
    if (isEnabled(IDC_DEFINITION_PREVIEW))
        writeIntegerSetting(kPreviewSection, kPreviewKey, isChecked(IDC_DEFINITION_PREVIEW) ? 1 : 0);
}

void CBMEADlg::onOk() {
    takeBackPreview();
    block_.undo().dropTo(level_);
    saveSettings();
    end(dialogs::kOkButton);
}

void CBMEADlg::onCancel() {
    takeBackPreview();
    block_.undo().undoTo(level_);
    saveSettings();
    end(dialogs::kCancelButton);
}

}  // namespace torvel
