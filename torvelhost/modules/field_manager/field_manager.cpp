// The field manager: makes and changes fields on behalf of a command that has loaded this module for the call.
#include "base/modules.h"
#include "hostapi/application.h"
#include "hostapi/services.h"
#include "torvelhost/modules/field_manager/field_questions.h"

namespace {

template <class Signature>
Signature* coreService(const hostapi::Service<Signature>& service) {
    return base::findFunction<Signature>(base::findLoadedModule(base::libraryFileName(hostapi::kCoreLibrary)),
                                         service.name);
}

// Null without a host and without an open drawing.
HostDocument* activeDocument() {
    auto* const functions = coreService(hostapi::get_host_funcptr);
    auto* const application =
        functions == nullptr
            ? nullptr
            : reinterpret_cast<hostapi::ApplicationFunction*>(functions(hostapi::kApplicationFunction));
    HostApplication* const host = application != nullptr ? application() : nullptr;
    return host != nullptr ? host->activeDocument() : nullptr;
}

OdDbObjectId selectObject(const wchar_t* prompt) {
    hostapi::Pick pick;
    auto* const select = coreService(hostapi::selectEntity);
    const bool picked = select != nullptr && select(prompt, nullptr, hostapi::kSingleEntity, pick) == hostapi::kValue;
    return picked ? pick.entity : OdDbObjectId();
}

void notice(const OdString& text) {
    if (auto* const notify = coreService(hostapi::notify)) notify(text.c_str());
}

bool ask(OdDbFieldPtr& field) {
    HostDocument* const document = activeDocument();
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
template <class Signature>
constexpr bool fits(const hostapi::Service<Signature>&, Signature*) {
    return true;
}
static_assert(fits(hostapi::insertField, &insertField));
static_assert(fits(hostapi::changeField, &changeField));
