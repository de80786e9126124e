#include "dialogs/windows/themed.h"

#include "base/modules.h"

namespace dialogs {
namespace {

HANDLE makeContext() {
    ACTCTXW context = {};
    context.cbSize = sizeof context;
    context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    context.lpResourceName = MAKEINTRESOURCEW(2);
    context.hModule = static_cast<HMODULE>(base::moduleOf(reinterpret_cast<const void*>(&makeContext)));
    return CreateActCtxW(&context);
}

}  // namespace

Themed::Themed() {
    static HANDLE const context = makeContext();
    if (context == INVALID_HANDLE_VALUE || !ActivateActCtx(context, &cookie_)) cookie_ = 0;
}

Themed::~Themed() {
    if (cookie_) DeactivateActCtx(0, cookie_);
}

}  // namespace dialogs
