// LAYOUT, and MSPACE and PSPACE, which enter and leave a viewport of it.
#include "base/number.h"
#include "drawingdb/viewport.h"
#include "torvelhost/commands/host_commands.h"

namespace host::commands {

CMD_RUNSTATUS layout(HostRun& run) {
    OdDbDatabase* const database = run.database;
    const auto makeCurrent = [&](const Reply& reply, std::wstring& reason) {
        if (database->setCurrentLayout(reply.text)) return true;
        reason = L"the drawing has no layout \"" + reply.text + L"\"";
        return false;
    };
    const std::wstring current = L" <" + database->currentLayoutName() + L">";
    for (;;) {
        const int result = run.input.ask((L"Enter layout to make current or [%s]" + current).c_str(), L"? Set",
                                         L"a layout", makeCurrent);
        if (result == kFirstKeyword) {
            for (const OdString& name : database->layoutNames()) run.input.printMessage(L"%s", name.c_str());
            continue;
        }
        if (result != kFirstKeyword + 1) return statusOf(result);
        return statusOf(run.input.ask((L"Enter layout to make current" + current).c_str(), nullptr, L"a layout",
                                      makeCurrent, {Expected::kText}));
    }
}

CMD_RUNSTATUS enterViewport(HostRun& run) {
    const std::vector<OdDbObjectId> viewports = run.document.floatingViewports();
    if (viewports.empty()) {
        const bool model = run.database->currentSpaceId() == run.database->modelSpaceId();
        return run.refused(model ? L"MSPACE: a layout must be current"
                                 : L"MSPACE: the layout has no floating viewport");
    }
    const auto find = [&](const Reply& reply) {
        const auto objects = parseObjects(reply.text);
        const auto number = base::parseInteger(std::wstring_view(reply.text));
        for (OdDbObjectId id : viewports) {
            if (objects && *objects == std::vector<TypedObject>{{id.handle()}}) return id;
            if (number && id.openAs<OdDbViewport>()->number() == *number) return id;
        }
        return OdDbObjectId();
    };
    OdDbObjectId chosen = viewports.front();
    const std::wstring prompt =
        L"Enter viewport number or handle <" + std::to_wstring(chosen.openAs<OdDbViewport>()->number()) + L">";
    const int result = run.input.askIfNext(
        prompt.c_str(), L"a floating viewport of this layout",
        [&](const Reply& reply, std::wstring&) {
            const OdDbObjectId id = find(reply);
            if (id) chosen = id;
            return !id.isNull();
        },
        [&](const Reply& reply) { return isInteger(reply) || !find(reply).isNull(); });
    if (result == kCancel) return kCommandCancelled;
    run.database->setActiveViewport(chosen);
    return kCommandFinished;
}

CMD_RUNSTATUS leaveViewport(HostRun& run) {
    OdDbDatabase* const database = run.database;
    if (database->currentSpaceId() == database->modelSpaceId()) return run.refused(L"PSPACE: a layout must be current");
    database->setActiveViewport(OdDbObjectId());
    return kCommandFinished;
}

}  // namespace host::commands
