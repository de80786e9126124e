#include "torvelcmd2/frame/resource_translation.h"

#include <algorithm>
#include <string>

#include "base/resources.h"
#include "base/text.h"
#include "hostapi/services.h"

namespace torvel {
namespace {

template <class Signature>
Signature* translationFunction(const hostapi::Service<Signature>& service) {
    base::ModuleHandle library = base::findLoadedModule(base::libraryFileName(hostapi::kCoreLibrary));
    if (!library) library = base::findLoadedModule(base::libraryFileName(hostapi::kResourceLibrary));
    return base::findFunction<Signature>(library, service.name);
}

int copyString(const std::string& text, char* buffer, int size) {
    if (size <= 0) return 0;
    std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    // Bytes 10xxxxxx continue a character.
    while (length > 0 && length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) --length;
    std::copy_n(text.begin(), length, buffer);
    buffer[length] = '\0';
    return static_cast<int>(length);
}

}  // namespace

int InitResourceTranslation(base::ModuleHandle instance) {
    auto* const init = translationFunction(hostapi::initResTranslation);
    return init != nullptr ? init(instance) : 0;
}

int DeInitResourceTranslation(base::ModuleHandle instance) {
    auto* const deInit = translationFunction(hostapi::deInitResTranslation);
    return deInit != nullptr ? deInit(instance) : 0;
}

int LoadStringNotTranslated(base::ModuleHandle instance, unsigned id, char* buffer, int size) {
    if (auto* const load = translationFunction(hostapi::loadStringNotTranslated))
        return load(instance, id, buffer, size);
    return copyString(base::toUtf8(base::loadString(instance, id)), buffer, size);
}

}  // namespace torvel
