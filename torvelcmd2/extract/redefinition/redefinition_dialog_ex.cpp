#include "torvelcmd2/extract/redefinition/redefinition_dialog_ex.h"

#include <utility>

#include "drawingdb/layer_states.h"
#include "hostapi/module_functions.h"
#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/attributes/multiline_editing.h"
#include "torvelcmd2/attributes/tag_rules.h"
#include "torvelcmd2/attributes/values/local_undo.h"

namespace torvel {

CAttReDefDlgEx::CAttReDefDlgEx(OdSmartPtr<OdDbAttributeDefinition> definition)
    : ModuleDialog(IDD_ATTREDEFEX, L"Dialogs\\AttReDef", L"IDH_AttReDef"),
      definition_(std::move(definition)),
      default_(definition_->database()) {
    setUpperCase(IDC_ATTREDEFEX_TAG);
    setText(IDC_ATTREDEFEX_TAG, definition_->tag());
    setText(IDC_ATTREDEFEX_PROMPT, definition_->prompt());
    setRichText(IDC_ATTREDEFEX_DEFAULT, &default_);
    show(IDC_ATTREDEFEX_EDITOR, definition_->isMTextAttributeDefinition());
    // Several lines are edited by the text editor alone.
    enable(IDC_ATTREDEFEX_DEFAULT, !definition_->isMTextAttributeDefinition());
    showDefault();
    if (drawingdb::isOnLockedLayer(*definition_)) lock(definition_->layer());
}

void CAttReDefDlgEx::lock(const OdString& layer) {
    locked_ = true;
    for (const int control :
         {IDC_ATTREDEFEX_TAG, IDC_ATTREDEFEX_PROMPT, IDC_ATTREDEFEX_DEFAULT, IDC_ATTREDEFEX_EDITOR}) {
        enable(control, false);
        setTooltip(control, lockedLayerText(layer));
    }
}

void CAttReDefDlgEx::showDefault() {
    if (definition_->isMTextAttributeDefinition())
        default_.loadForReading(*definition_);
    else
        default_.load(*definition_);
    refreshRichText(IDC_ATTREDEFEX_DEFAULT);
    setModified(IDC_ATTREDEFEX_DEFAULT, false);
}

void CAttReDefDlgEx::onCommand(int control, dialogs::Event event) {
    if (control == IDC_ATTREDEFEX_EDITOR && event == dialogs::Event::kPressed) end(kEditMultiLine);
}

bool CAttReDefDlgEx::onLeave(int control, int next) {
    if (control != IDC_ATTREDEFEX_TAG || next == dialogs::kCancelButton || next == dialogs::kHelpButton) return true;
    const unsigned refusal = tagRefusal(kRedefinitionTagRule, text(IDC_ATTREDEFEX_TAG));
    if (refusal) notifyUser(loadText(refusal));
    return refusal == 0;
}

void CAttReDefDlgEx::onOk() {
    if (locked_) return end(dialogs::kOkButton);
    definition_->upgradeOpen();
    definition_->setTag(text(IDC_ATTREDEFEX_TAG));
    // A prompt with a blank is not written and the old one stays: users know it so.
    const OdString prompt = text(IDC_ATTREDEFEX_PROMPT);
    if (!prompt.empty() && prompt.find_first_of(L" \t") == OdString::npos) definition_->setPrompt(prompt);
    if (!definition_->isMTextAttributeDefinition() && isModified(IDC_ATTREDEFEX_DEFAULT)) default_.save(*definition_);
    end(dialogs::kOkButton);
}

namespace {

void editDefault(OdDbAttributeDefinition& definition, HostLocalUndo& undo) {
    const MultiLineEdit edit = editMultiLine(definition, WhileEdited::kShown);
    if (!edit.value) return;
    const HostLocalUndo::step step(undo);
    applyMultiLine(*edit.value, definition);
}

}  // namespace

}  // namespace torvel

extern "C" int ShowAttDDEIT(const OdDbObjectId& id) {
    using namespace torvel;
    const auto definition = id.openIf<OdDbAttributeDefinition>();
    if (!definition) return 0;
    const ModuleResources resources;
    // What the text editor writes while the dialog is open goes with it.
    HostLocalUndo undo{OdDbDatabasePtr(definition->database())};
    CAttReDefDlgEx dialog(definition);
    int code = dialog.runModal();
    for (; code == CAttReDefDlgEx::kEditMultiLine; code = dialog.runModal()) {
        editDefault(*definition, undo);
        dialog.showDefault();
    }
    if (code == dialogs::kOkButton) return 1;
    undo.undoTo(0);
    return 0;
}
static_assert(hostapi::fits(hostapi::ShowAttDDEIT, &ShowAttDDEIT));
