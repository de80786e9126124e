#include "torvelcmd2/extract/redefinition/redefinition_dialog.h"

#include <utility>

#include "drawingdb/mtext.h"
#include "torvelcmd2/attributes/multiline_editing.h"
#include "torvelcmd2/attributes/tag_rules.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {

CAttReDefDlg::CAttReDefDlg(OdSmartPtr<OdDbAttributeDefinition> definition)
    : ModuleDialog(IDD_ATTREDEF, nullptr, L"IDH_AttReDef"),
      definition_(std::move(definition)),
      default_(definition_->textString()) {
    setUpperCase(IDC_ATTREDEF_TAG);
    setText(IDC_ATTREDEF_TAG, definition_->tag());
    setText(IDC_ATTREDEF_PROMPT, definition_->prompt());
    setText(IDC_ATTREDEF_DEFAULT, default_);
}

void CAttReDefDlg::onCommand(int control, dialogs::Event event) {
    if (event != dialogs::Event::kPressed) return;
    if (control == IDC_ATTREDEF_FIELD) insertField();
    if (control == IDC_ATTREDEF_EDITOR) editDefault();
}

// The box holds plain text, so a field goes in as what it shows.
void CAttReDefDlg::insertField() {
    const ModuleFunction insert(hostapi::insertField);
    OdDbFieldPtr field;
    if (!insert || !insert(field) || !field) return;
    const OdString shown = field->getFieldCode(OdDbField::kEvaluatedText);
    OdString edited = text(IDC_ATTREDEF_DEFAULT);
    const dialogs::TextSelection selected = selection(IDC_ATTREDEF_DEFAULT);
    edited.replace(selected.begin(), selected.end() - selected.begin(), shown);
    setText(IDC_ATTREDEF_DEFAULT, edited);
    setSelection(IDC_ATTREDEF_DEFAULT, {selected.begin() + shown.size(), selected.begin() + shown.size()});
}

void CAttReDefDlg::editDefault() {
    const auto form = OdDbMText::createObject();
    form->setDatabaseDefaults(definition_->database());
    form->setLocation(definition_->position());
    const MultiLineEdit edit = editMultiLine(*form, WhileEdited::kAsItIs, OdGeMatrix3d::kIdentity,
                                             CapturedText{false, text(IDC_ATTREDEF_DEFAULT), {}});
    if (edit.value) setText(IDC_ATTREDEF_DEFAULT, shownText(edit.value->text));
}

void CAttReDefDlg::putDefault() {
    const OdString edited = text(IDC_ATTREDEF_DEFAULT);
    if (edited == default_) return;
    definition_->upgradeOpen();
    definition_->setTextString(edited);
}

void CAttReDefDlg::onOk() {
    const OdString tag = text(IDC_ATTREDEF_TAG);
    if (const unsigned refusal = tagRefusal(kDefinitionTagRule, tag)) {
        showBox(hostapi::kErrorBox, loadText(refusal));
        return;
    }
    putDefault();
    definition_->upgradeOpen();
    definition_->setTag(tag);
    definition_->setPrompt(text(IDC_ATTREDEF_PROMPT));
    end(dialogs::kOkButton);
}

}  // namespace torvel
