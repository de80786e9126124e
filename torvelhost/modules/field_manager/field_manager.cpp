// The field manager: makes and changes fields on behalf of a command that has loaded this module for the call.
#include "dialogs/boxes.h"
#include "dialogs/process.h"
#include "torvelhost/modules/field_manager/field_dialog.h"
#include "torvelhost/modules/field_manager/field_questions.h"
#include "torvelhost/modules/host_services.h"

namespace {

OdDbObjectId selectObject(const wchar_t* prompt) {
    hostapi::Pick pick;
    auto* const select = base::findFunction(hostapi::selectEntity);
    const bool picked = select && select(prompt, nullptr, hostapi::kSingleEntity, pick) == hostapi::kValue;
    return picked ? pick.entity : OdDbObjectId();
}

void notice(const OdString& text) {
    if (auto* const notify = base::findFunction(hostapi::notify)) notify(text.c_str());
}

base::ModuleHandle thisModule() { return base::moduleOf(reinterpret_cast<const void*>(&thisModule)); }

OdDbFieldPtr runDialog(const OdDbFieldPtr& before, OdDbDatabase& database) {
    const dialogs::ResourceScope resources(thisModule());
    const OdString codeBefore = before ? before->getFieldCode(OdDbField::kRawCode) : OdString();
    fieldmanager::FieldDialog dialog(codeBefore, database);
    for (;;) {
        const int code = dialog.runModal();
        if (code != fieldmanager::FieldDialog::kPickObject) {
            if (code != dialogs::kOkButton) return {};
            // What was not changed keeps the value it has, also where its source is gone.
            const OdDbFieldPtr made = dialog.field();
            return made->getFieldCode(OdDbField::kRawCode) == codeBefore ? OdDbFieldPtr() : made;
        }
        if (const OdDbObjectId object = selectObject(L"Select object"); !object.isNull()) dialog.setObject(object);
    }
}

OdDbFieldPtr askInDialog(const OdDbFieldPtr& before, OdDbDatabase& database) {
    dialogs::OneAnswer answer;
    OdDbFieldPtr made = runDialog(before, database);
    if (made) answer.tell(made->getFieldCode(OdDbField::kRawCode));
    return made;
}

OdDbFieldPtr askOnCommandLine(const OdDbFieldPtr& before, HostDocument& document) {
    if (before) notice(L"The field is: " + before->getFieldCode(OdDbField::kRawCode));
    return fieldmanager::askField({*document.input(), *document.database(), selectObject, notice});
}

// A person whose dialogs are windows is asked in one; a script and the command line go on with their lines.
bool ask(OdDbFieldPtr& field, const OdDbFieldPtr& before) {
    HostDocument* const document = hostmodule::activeDocument();
    if (!document) return false;
    const OdDbFieldPtr made =
        dialogs::asksLines() ? askOnCommandLine(before, *document) : askInDialog(before, *document->database());
    if (made) field = made;
    return static_cast<bool>(made);
}

}  // namespace

extern "C" {

bool insertField(OdDbFieldPtr& field) { return ask(field, {}); }

bool changeField(OdDbFieldPtr& field) { return ask(field, field); }

}  // extern "C"

// The table of services and the functions say the same.
static_assert(hostapi::fits(hostapi::insertField, &insertField));
static_assert(hostapi::fits(hostapi::changeField, &changeField));
