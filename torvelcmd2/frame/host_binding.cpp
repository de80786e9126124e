#include "torvelcmd2/frame/host_binding.h"

#include "base/console.h"
#include "base/format.h"
#include "base/text.h"
#include "hostapi/input.h"

namespace torvel {
namespace {

base::ModuleHandle viewModule() { return base::findLoadedModule(base::libraryFileName(hostapi::kViewModule)); }

// What the bridge names as the main module; null when the bridge is not loaded or names none.
base::ModuleHandle mainModuleOfBridge() {
    auto* const mainInstance = hostService(hostapi::GetMainDllInstanceEx);
    return mainInstance ? mainInstance() : nullptr;
}

// The lookup of the factory goes by the main module's name where GetHostMainModule goes by its handle: a host may offer
// its commands elsewhere than its functions.
base::ModuleHandle factoryModule() {
    using NameFunction = const wchar_t*();
    if (auto* const mainName = base::findFunction<NameFunction>(base::processImage(), hostapi::GetMainDllNameW.name)) {
        // When the module so named is not loaded there is no other way: the program has said where its commands are.
        const wchar_t* const name = mainName();
        return name ? base::findLoadedModule(name) : nullptr;
    }
    if (base::ModuleHandle const view = viewModule()) return view;
    return mainModuleOfBridge();
}

}  // namespace

base::ModuleHandle GetHostMainModule() {
    using InstanceFunction = void*();
    if (auto* const mainInstance =
            base::findFunction<InstanceFunction>(base::processImage(), hostapi::GetMainDllInstance.name))
        return mainInstance();
    if (base::ModuleHandle const view = viewModule()) return view;
    return mainModuleOfBridge();
}

hostapi::HostFunction GetHostFunction(int id) {
    auto* const hostFunctions =
        base::findFunction<hostapi::HostFunction(int)>(GetHostMainModule(), hostapi::get_host_funcptr.name);
    return hostFunctions ? hostFunctions(id) : nullptr;
}

bool GetCommandFactory(ICmdFactory*& factory) {
    auto* const newFactory = base::findFunction<void(ICmdFactory**)>(factoryModule(), hostapi::new_ICmdFactory.name);
    if (!newFactory) return false;
    newFactory(&factory);
    return true;
}

HostApplication* hostApplication() {
    auto* const application =
        reinterpret_cast<hostapi::ApplicationFunction*>(GetHostFunction(hostapi::kApplicationFunction));
    return application ? application() : nullptr;
}

HostDocument* activeDocument() {
    HostApplication* const application = hostApplication();
    return application ? application->activeDocument() : nullptr;
}

HostEdInput* GetCurrentInput() {
    HostApplication* const application = hostApplication();
    HostDocument* const document = application->activeDocument();
    return document ? document->input() : application->applicationInput();
}

void checkInterfaceVersion() {
    auto* const version = hostService(hostapi::interfaceVersion);
    if (!version || version() == hostapi::kInterfaceVersion) return;
    const std::wstring text = base::format(
        L"The command module %s was built for version %d of the host's interfaces, and this host offers "
        L"version %d: its commands may fail. Use a module and a host that were made for each other.",
        hostapi::kCommandModule, hostapi::kInterfaceVersion, version());
    if (auto* const notify = hostService(hostapi::notify))
        notify(text.c_str());
    else
        base::writeTo(base::Stream::kError, base::toUtf8(text + L"\n"));
}

}  // namespace torvel
