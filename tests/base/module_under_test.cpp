#include "base/modules.h"
#include "base/resources.h"

extern "C" int exportedByDependency();

extern "C" int exportedByModule() { return 40 + exportedByDependency(); }

extern "C" int notListed() { return 0; }

// The module's own copy of base finds the resources of the module that calls it.
extern "C" void* moduleThatAnswers() { return base::moduleOf(reinterpret_cast<const void*>(&exportedByModule)); }

extern "C" unsigned lengthOfString(void* module, unsigned id) {
    return static_cast<unsigned>(base::loadString(module, id).size());
}
