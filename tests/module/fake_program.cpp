// A program that is a host itself: what it exports (program_host.exports) is the fake host's.
#include <string>

#include "base/modules.h"
#include "base/paths.h"
#include "tests/module/fake_host.h"

extern "C" {
void* GetMainDllInstance() { return base::processImage(); }
const wchar_t* GetMainDllNameW() {
    static const std::wstring name = base::fileNameOf(base::moduleFileName(base::processImage()));
    return name.c_str();
}
void new_ICmdFactory(ICmdFactory** factory) { fake::newCommandFactory(factory); }
fake::HostFunction get_host_funcptr(int id) { return fake::hostFunction(id); }
}
