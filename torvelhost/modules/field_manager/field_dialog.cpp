#include "torvelhost/modules/field_manager/field_dialog.h"

#include "base/text.h"
#include "dialogs/boxes.h"
#include "torvelhost/modules/field_manager/resource.h"

namespace fieldmanager {

FieldDialog::FieldDialog(const OdString& code, OdDbDatabase& database) : Dialog(IDD_FIELD), database_(database) {
    for (const KindNames& kind : kKinds) addChoice(IDC_FIELD_KIND, kind.keyword);
    setText(IDC_FIELD_CODE, code);
    showParts();
    showPreview();
}

void FieldDialog::setObject(OdDbObjectId object) {
    parts_.object = object.handle().value();
    makeCode();
    focus(IDC_FIELD_NAME);
}

void FieldDialog::onCommand(int control, dialogs::Event event) {
    switch (control) {
        case IDC_FIELD_KIND:
            // The same once more begins nothing new.
            if (static_cast<int>(parts_.kind) == selected(IDC_FIELD_KIND) && !parts_.name.empty()) return;
            parts_ = {static_cast<Kind>(selected(IDC_FIELD_KIND)), {}, parts_.object, parts_.format};
            showKind();
            return makeCode();
        case IDC_FIELD_OBJECT:
            if (event == dialogs::Event::kPressed) end(kPickObject);
            return;
        case IDC_FIELD_NAME:
        case IDC_FIELD_FORMAT:
            parts_.name = text(IDC_FIELD_NAME);
            parts_.format = text(IDC_FIELD_FORMAT);
            return makeCode();
        case IDC_FIELD_CODE:
            showParts();
            return showPreview();
        default:
            return;
    }
}

void FieldDialog::onOk() {
    if (field_) return end(dialogs::kOkButton);
    dialogs::messageBox(dialogs::BoxKind::kWarning, L"\"" + text(IDC_FIELD_CODE) + L"\"" + kNoCode + L".");
    focus(IDC_FIELD_CODE);
    selectAll(IDC_FIELD_CODE);
}

// The names that a field of the kind goes by.
void FieldDialog::showKind() {
    clearChoices(IDC_FIELD_NAME);
    const KindNames& kind = kKinds[static_cast<std::size_t>(parts_.kind)];
    for (const std::wstring& name : base::split(kind.names, L' '))
        if (!name.empty()) addChoice(IDC_FIELD_NAME, name);
    setText(IDC_FIELD_NAME, parts_.name);
    setText(IDC_FIELD_NAME_LABEL, parts_.kind == Kind::kObject    ? L"&Property:"
                                  : parts_.kind == Kind::kFormula ? L"Form&ula:"
                                                                  : L"&Name:");
    // The parts of a code that no kind makes are not known, and would make another.
    const bool isKnown = selected(IDC_FIELD_KIND) >= 0;
    enable(IDC_FIELD_NAME, isKnown);
    enable(IDC_FIELD_FORMAT, isKnown);
    enable(IDC_FIELD_OBJECT, isKnown && parts_.kind == Kind::kObject);
}

// Of a code that none of the kinds makes nothing is shown, and choosing a kind begins a new one.
void FieldDialog::showParts() {
    const auto found = partsOf(text(IDC_FIELD_CODE));
    parts_ = found.value_or(FieldParts());
    const bool isNew = text(IDC_FIELD_CODE).empty();
    select(IDC_FIELD_KIND, found || isNew ? static_cast<int>(parts_.kind) : -1);
    showKind();
    setText(IDC_FIELD_FORMAT, parts_.format);
}

void FieldDialog::makeCode() {
    setText(IDC_FIELD_CODE, codeOf(parts_));
    showPreview();
}

void FieldDialog::showPreview() {
    const auto code = codeMeant(text(IDC_FIELD_CODE));
    field_ = code ? makeField(*code, database_) : OdDbFieldPtr();
    setText(IDC_FIELD_PREVIEW, field_ ? field_->getFieldCode(OdDbField::kEvaluatedText) : OdString());
}

}  // namespace fieldmanager
