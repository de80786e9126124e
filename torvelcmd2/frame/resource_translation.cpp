#include "torvelcmd2/frame/resource_translation.h"

#include "base/resources.h"
#include "hostapi/services.h"

namespace torvel {
namespace {

template <class Signature>
Signature* translationFunction(const hostapi::Service<Signature>& service) {
    base::ModuleHandle library = base::findLoadedModule(base::libraryFileName(hostapi::kCoreLibrary));
    if (!library) library = base::findLoadedModule(base::libraryFileName(hostapi::kResourceLibrary));
    return base::findFunction<Signature>(library, service.name);
}

}  // namespace

int InitResourceTranslation(base::ModuleHandle instance) {
    auto* const init = translationFunction(hostapi::initResTranslation);
    return init ? init(instance) : 0;
}

int DeInitResourceTranslation(base::ModuleHandle instance) {
    auto* const deInit = translationFunction(hostapi::deInitResTranslation);
    return deInit ? deInit(instance) : 0;
}

int LoadStringNotTranslated(base::ModuleHandle instance, unsigned id, char* buffer, int size) {
    if (auto* const load = translationFunction(hostapi::loadStringNotTranslated))
        return load(instance, id, buffer, size);
    return base::loadNarrowString(instance, id, buffer, size);
}

}  // namespace torvel
