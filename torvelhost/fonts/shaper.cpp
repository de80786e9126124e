#include "torvelhost/fonts/shaper.h"

#include "base/modules.h"

namespace host {

Shaper* Shaper::installed() {
    static Shaper* const shaper = []() -> Shaper* {
        base::ModuleReference library = base::loadModule(base::libraryFileName(L"torvelshaping"));
        auto* const make = base::findFunction<Shaper*()>(library.get(), "torvelMakeShaper");
        if (!make) return nullptr;
        static_cast<void>(library.release());  // fonts that it has opened live as long as the program
        return make();
    }();
    return shaper;
}

}  // namespace host
