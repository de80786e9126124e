// Tests of the host binding in programs that export different things (each is a program of its own), beside host
// libraries that are loaded and unloaded at will.
#pragma once

#include <gtest/gtest.h>
#include <string>

#include "base/modules.h"
#include "base/paths.h"
#include "base/text.h"
#include "fake_library.h"
#include "hostapi/host_names.h"
#include "torvelcmd2/frame/host_binding.h"

/// A loaded stand-in for a library of the host.
class FakeLibrary {
  public:
    /// `kind` is the folder: "host", "bridge", "translation" or "empty"; `name` the name in the host.
    FakeLibrary(const wchar_t* kind, const wchar_t* name)
        : module_(base::loadModule(folder(kind) + base::libraryFileName(name), &reason_)) {
        EXPECT_NE(module_, nullptr) << base::toUtf8(reason_);
        if (auto* const stateOf = base::findFunction<FakeLibraryStateFunction>(module_.get(), kFakeLibraryState)) {
            state_ = stateOf();
            *state_ = {};
        }
    }
    base::ModuleHandle handle() const { return module_.get(); }
    FakeLibraryState& state() const { return *state_; }

  private:
    static std::wstring folder(const wchar_t* kind) {
        const std::wstring bin = base::folderOf(base::moduleFileName(base::processImage()));
        return base::joinPath(base::joinPath(bin, L"fake_host"), kind) + base::pathSeparator();
    }

    std::wstring reason_;
    base::ModuleReference module_;
    FakeLibraryState* state_ = nullptr;
};

inline FakeLibrary loadView() { return {L"host", hostapi::kViewModule}; }
inline FakeLibrary loadViewWithoutFunctions() { return {L"empty", hostapi::kViewModule}; }
inline FakeLibrary loadBridge(base::ModuleHandle mainModule) {
    FakeLibrary bridge(L"bridge", hostapi::kBridgeModule);
    bridge.state().mainModule = mainModule;
    return bridge;
}
/// A library of the host that plays no role of its own: the bridge or the program can name it as the main module.
inline FakeLibrary loadOther() { return {L"host", L"otherhost"}; }

/// Whether a factory came, and that the out value is untouched otherwise.
inline bool factoryFound() {
    ICmdFactory* const untouched = reinterpret_cast<ICmdFactory*>(&loadView);
    ICmdFactory* factory = untouched;
    const bool found = torvel::GetCommandFactory(factory);
    EXPECT_EQ(found, factory != untouched);
    return found;
}
