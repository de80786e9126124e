#include "fake_services.h"

#include "base/format.h"
#include "base/number.h"
#include "drawingdb/database.h"
#include "hostapi/application.h"
#include "hostapi/input.h"

namespace {

FakeServices services;

int takePick(hostapi::Pick& pick) {
    if (services.picks.empty()) return hostapi::kCancel;
    const std::optional<hostapi::Pick> next = services.picks.front();
    services.picks.pop_front();
    if (next) pick = *next;
    return next ? hostapi::kValue : hostapi::kEmpty;
}

}  // namespace

extern "C" {

FakeServices* fakeServices() { return &services; }

int hostInterfaceVersion() { return services.interfaceVersion; }

hostapi::HostFunction get_host_funcptr(int id) { return services.hostFunction ? services.hostFunction(id) : nullptr; }

void hostNotify(const wchar_t* text) { services.notices.push_back(text); }

int getActiveBTRId(OdDbObjectId& block, OdDbDatabase* database) {
    block = database->currentSpaceId();
    return 1;
}

int hostSelectSet(const wchar_t*, int, OdDbObjectIdArray& entities) {
    if (services.sets.empty()) return hostapi::kCancel;
    entities = services.sets.front();
    services.sets.pop_front();
    return hostapi::kValue;
}

int hostSelectEntity(const wchar_t*, const wchar_t*, int flags, hostapi::Pick& pick) {
    services.pickFlags.push_back(flags);
    return takePick(pick);
}

int hostSelectNested(const wchar_t*, int, const hostapi::Pick* at, HostGsSelectionReactor* reactor,
                     hostapi::Pick& pick) {
    if (at)
        pick = *at;
    else if (const int result = takePick(pick); result != hostapi::kValue)
        return result;
    if (!pick.nested || !reactor->selected(pick.nested, pick.containers.data(), pick.containers.size()))
        pick.nested = {};
    return hostapi::kValue;
}

bool hostGetCurrentPick(hostapi::Pick& pick) {
    if (services.currentPick) pick = *services.currentPick;
    return services.currentPick.has_value();
}

bool hostGetVarInteger(const wchar_t* name, std::int64_t& value) {
    if (OdString(name) != L"ATTIPE") return false;
    value = services.attipe;
    return true;
}

bool hostdbRToS(double value, int, int, CXStringW& text) {
    text = base::format(L"%g", value);
    return true;
}

bool hostdbSToR(const wchar_t* text, int, double& value) {
    const auto number = base::parseReal(std::wstring_view(text));
    if (number) value = *number;
    return number.has_value();
}

// ---- what a host may lack

bool hostProgress(std::uint64_t done, std::uint64_t) { return done <= services.stepsAllowed; }

void hostRedrawEntity(OdDbObjectId entity) { services.redrawn.push_back(entity); }

int hostUndoGroupDepth(HostDocument* document) { return document->database()->undoGroupDepth(); }
void hostOpenUndoGroup(HostDocument* document) { document->database()->blockUndoRecording(true); }
void hostCloseUndoGroup(HostDocument* document) { document->database()->blockUndoRecording(false); }
void hostRollBackUndoGroup(HostDocument* document) { document->database()->rollBackUndoGroup(); }

}  // extern "C"
