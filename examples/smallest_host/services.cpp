// The services of the smallest host. Modules look for them by name in a library called torvelcore, and do without those
// that are not there: AttSync needs one.
#include "hostapi/services.h"

#include "drawingdb/database.h"

extern "C" {

int hostInterfaceVersion() { return hostapi::kInterfaceVersion; }

// Here the user draws in the current layout; there are no viewports to enter.
int getActiveBTRId(OdDbObjectId& block, OdDbDatabase* database) {
    if (!database) return 0;
    block = database->currentSpaceId();
    return block == database->modelSpaceId();
}

}  // extern "C"

static_assert(hostapi::fits(hostapi::interfaceVersion, &hostInterfaceVersion));
static_assert(hostapi::fits(hostapi::getActiveBTRId, &getActiveBTRId));
