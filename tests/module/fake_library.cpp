// Stand-in for every library of a host; what each exports is said by its list of exports.
#include "fake_library.h"

#include <cstring>

#include "hostapi/command.h"

namespace {

FakeLibraryState state;

class Factory final : public ICmdFactory {
  public:
    std::uint32_t addRef() override { return 2; }
    std::uint32_t release() override { return 1; }
    int addCommandInGroup(const char*, CommandCreator, const wchar_t*, int, std::uintptr_t, std::uintptr_t) override {
        return 1;
    }
    int addCommand(const char*, CommandCreator) override { return 1; }
} factory;

void hostFunction() {}

}  // namespace

extern "C" {

FakeLibraryState* fakeLibraryState() { return &state; }

void new_ICmdFactory(ICmdFactory** out) {
    ++state.factories;
    *out = &factory;
}

void (*get_host_funcptr(int id))() {
    state.functionId = id;
    return hostFunction;
}

void* GetMainDllInstanceEx() { return state.mainModule; }

int _InitResTranslation(void* module) {
    state.translatedModule = module;
    return 5;
}

int _DeInitResTranslation(void*) {
    ++state.translationsEnded;
    return 6;
}

int _LoadStringNotTrans(void*, unsigned id, char* buffer, int size) {
    std::strncpy(buffer, "untranslated", static_cast<std::size_t>(size));
    return static_cast<int>(id);
}

}  // extern "C"
