// The program: it starts the core library and tells modules where that is.

#include "base/modules.h"
#include "hostapi/services.h"
#include "torvelhost/program/program.h"

namespace {

const std::wstring& coreFileName() {
    static const std::wstring name = base::libraryFileName(hostapi::kCoreLibrary);
    return name;
}

}  // namespace

extern "C" {

void* GetMainDllInstance() { return base::findLoadedModule(coreFileName()); }

const wchar_t* GetMainDllNameW() { return coreFileName().c_str(); }

}  // extern "C"

int main(int count, char** arguments) { return torvelhostMain(count, arguments); }
