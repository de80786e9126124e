// Loads the command module, as a host does, and names what it exports of hostapi/module_functions.h.
#include <dlfcn.h>
#include <iostream>

#include "hostapi/module_functions.h"

int main() {
    void* const module = dlopen(MODULE, RTLD_NOW);
    if (!module) {
        std::cerr << dlerror() << "\n";
        return 1;
    }
    for (const char* name :
         {hostapi::ShowAttEditDialog.name, hostapi::doEAttEdit.name, hostapi::burstBlockReference.name})
        std::cout << name << (dlsym(module, name) ? " is there\n" : " is missing\n");
}
