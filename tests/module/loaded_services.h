// A loaded stand-in for the host's core library, for tests that are the rest of the host.
#pragma once

#include <gtest/gtest.h>

#include "base/modules.h"
#include "base/paths.h"
#include "base/text.h"
#include "fake_host.h"
#include "fake_services.h"

class LoadedServices {
  public:
    /// `kind` is its folder: "rich", "poor" or "mute".
    explicit LoadedServices(const wchar_t* kind) {
        const std::wstring bin = base::folderOf(base::moduleFileName(base::processImage()));
        const std::wstring folder = base::joinPath(base::joinPath(bin, L"fake_host"), kind);
        std::wstring reason;
        module_ = base::loadModule(base::joinPath(folder, base::libraryFileName(hostapi::kCoreLibrary)), &reason);
        auto* const state = base::findFunction<FakeServicesFunction>(module_.get(), kFakeServices);
        if (!state) throw std::runtime_error(base::toUtf8(reason));
        services_ = state();
        *services_ = {};
        services_->hostFunction = fake::hostFunction;
    }
    FakeServices* operator->() const { return services_; }

  private:
    base::ModuleReference module_;
    FakeServices* services_;
};
