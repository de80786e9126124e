// What a stand-in for one of the host's libraries tells the test that loaded it.
#pragma once

#include <cstdint>

struct FakeLibraryState {
    int factories = 0;                 // new_ICmdFactory was called
    int functionId = 0;                // what get_host_funcptr was asked for last
    void* mainModule = nullptr;        // what GetMainDllInstanceEx returns
    void* translatedModule = nullptr;  // what _InitResTranslation was given last
    int translationsEnded = 0;         // _DeInitResTranslation was called
};
/// The one function that every stand-in exports beside those of its role.
using FakeLibraryStateFunction = FakeLibraryState*();
inline constexpr char kFakeLibraryState[] = "fakeLibraryState";
