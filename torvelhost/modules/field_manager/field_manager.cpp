// The field manager: makes and changes fields on behalf of a command that has loaded this module for the call.
#include "torvelhost/modules/field_manager/field_questions.h"
#include "torvelhost/modules/host_services.h"

namespace {

using hostmodule::hostService;

OdDbObjectId selectObject(const wchar_t* prompt) {
    hostapi::Pick pick;
    auto* const select = hostService(hostapi::selectEntity);
    const bool picked = select != nullptr && select(prompt, nullptr, hostapi::kSingleEntity, pick) == hostapi::kValue;
    return picked ? pick.entity : OdDbObjectId();
}

void notice(const OdString& text) {
    if (auto* const notify = hostService(hostapi::notify)) notify(text.c_str());
}

bool ask(OdDbFieldPtr& field) {
    HostDocument* const document = hostmodule::activeDocument();
    if (!document) return false;
    const OdDbFieldPtr made = fieldmanager::askField({*document->input(), *document->database(), selectObject, notice});
    if (made) field = made;
    return static_cast<bool>(made);
}

}  // namespace

extern "C" {

bool insertField(OdDbFieldPtr& field) { return ask(field); }

bool changeField(OdDbFieldPtr& field) {
    if (field) notice(L"The field is: " + field->getFieldCode(OdDbField::kRawCode));
    return ask(field);
}

}  // extern "C"

// The table of services and the functions say the same.
static_assert(hostapi::fits(hostapi::insertField, &insertField));
static_assert(hostapi::fits(hostapi::changeField, &changeField));
