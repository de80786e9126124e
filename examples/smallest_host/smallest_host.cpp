// The smallest host that can use the command module: it draws a ray, brings the references of a block in line with
// their definitions, and lets the module make plain text of a formatted one.
//
//     smallest_host DRAWING OUTPUT BLOCK
//
// docs/hosts.md tells what of this a host must have, and what more it may offer. Of this project's own rooms a host
// needs hostapi/ and drawingdb/; base/ is used here for what every program has in its own way (libraries that are
// loaded, texts, the console).
#include <cstdarg>
#include <cstdio>
#include <deque>
#include <map>
#include <memory>
#include <stdexcept>

#include "base/console.h"
#include "base/format.h"
#include "base/modules.h"
#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/database.h"
#include "hostapi/application.h"
#include "hostapi/command.h"
#include "hostapi/input.h"
#include "hostapi/module_functions.h"

namespace {

// The command line. Points and texts come from lists; where a list is at its end, the answer is Enter, or a cancel
// where Enter would be no answer.
class Input final : public HostEdInput {
  public:
    std::deque<OdGePoint3d> points;
    std::deque<OdString> texts;

    int getPoint(const OdGePoint3d*, OdGePoint3d& point, const wchar_t*, const wchar_t*, int, std::uintptr_t,
                 HostEdInputTracker*) override {
        if (points.empty()) return hostapi::kEmpty;
        point = points.front();
        points.pop_front();
        return hostapi::kValue;
    }

    int getKeyword(const wchar_t*, const wchar_t* keywords, int, std::uintptr_t textOut, std::uintptr_t) override {
        if (texts.empty()) return hostapi::kCancel;
        const OdString answer = texts.front();
        texts.pop_front();
        int result = hostapi::kFirstKeyword;
        for (const OdString& keyword : base::split(keywords ? keywords : L"", L' ')) {
            if (base::equalsNoCase(keyword, answer)) return result;
            ++result;
        }
        if (!textOut) return hostapi::kCancel;
        *reinterpret_cast<OdString*>(textOut) = answer;
        return hostapi::kValue;
    }

    void printMessage(const wchar_t* format, ...) override {
        std::va_list arguments;
        va_start(arguments, format);
        const OdString line = base::vformat(format, arguments) + L'\n';
        va_end(arguments);
        base::writeTo(base::Stream::kOutput, base::toUtf8(line));
    }

    bool getString(OdString&) override { return false; }
    int getAngle(double&, const wchar_t*, const wchar_t*, int, std::uintptr_t) override { return hostapi::kCancel; }
    int getDistance(const OdGePoint3d*, double&, const wchar_t*, const wchar_t*, int, std::uintptr_t) override {
        return hostapi::kCancel;
    }
    int getInteger(int&, const wchar_t*, const wchar_t*, int, std::uintptr_t) override { return hostapi::kCancel; }
    void setCurrentEntity(int, OdDbEntity*) override {}
} g_input;

// The one drawing.
class Document final : public HostDocument {
  public:
    OdDbDatabasePtr drawing;
    OdDbDatabase* database() override { return drawing.get(); }
    HostEdInput* input() override { return &g_input; }
} g_document;

class Application final : public HostApplication {
  public:
    HostDocument* activeDocument() override { return g_document.drawing ? &g_document : nullptr; }
    HostEdInput* applicationInput() override { return &g_input; }
} g_application;

// The list of commands, which the module fills while it is being loaded.
class Factory final : public ICmdFactory {
  public:
    std::map<std::string, CommandCreator> creators;

    // It lives as long as the program.
    std::uint32_t addRef() override { return 1; }
    std::uint32_t release() override { return 1; }
    int addCommand(const char* name, CommandCreator creator) override { return creators.emplace(name, creator).second; }
    int addCommandInGroup(const char* name, CommandCreator creator, const wchar_t*, int, std::uintptr_t,
                          std::uintptr_t) override {
        return addCommand(name, creator);
    }
} g_factory;

HostApplication* application() { return &g_application; }

}  // namespace

// ---- what the program exports

extern "C" {

void* GetMainDllInstance() { return base::processImage(); }

const wchar_t* GetMainDllNameW() {
    static const std::wstring name = base::fileNameOf(base::moduleFileName(base::processImage()));
    return name.c_str();
}

void new_ICmdFactory(ICmdFactory** commands) { *commands = &g_factory; }

hostapi::HostFunction get_host_funcptr(int id) {
    return id == hostapi::kApplicationFunction ? reinterpret_cast<hostapi::HostFunction>(&application) : nullptr;
}

}  // extern "C"

static_assert(hostapi::fits(hostapi::GetMainDllInstance, &GetMainDllInstance));
static_assert(hostapi::fits(hostapi::GetMainDllNameW, &GetMainDllNameW));
static_assert(hostapi::fits(hostapi::new_ICmdFactory, &new_ICmdFactory));
static_assert(hostapi::fits(hostapi::get_host_funcptr, &get_host_funcptr));

namespace {

base::ModuleReference load(const std::wstring& fileName) {
    std::wstring reason;
    base::ModuleReference module = base::loadModule(fileName, &reason);
    if (!module) throw std::runtime_error(base::toUtf8(fileName + L": " + reason));
    return module;
}

// A command that breaks off throws; here that ends the program, with nothing saved.
void run(const char* name) {
    const auto creator = g_factory.creators.find(name);
    if (creator == g_factory.creators.end()) throw std::runtime_error(std::string("there is no command ") + name);
    ICmdProcess* created = nullptr;
    creator->second(&created);
    if (!created) throw std::bad_alloc();
    const auto release = [](ICmdProcess* command) { command->release(); };
    const std::unique_ptr<ICmdProcess, decltype(release)> command(created);
    command->run();
    if (command->runStatus() != kCommandFinished) throw std::runtime_error(std::string(name) + " was cancelled");
}

void work(const std::wstring& drawing, const std::wstring& output, const std::wstring& block) {
    // The services before the module, which asks for the version of the interfaces while it is being loaded. They lie
    // in a folder of their own, beside those of another host.
    const std::wstring folder =
        base::joinPath(base::folderOf(base::moduleFileName(base::processImage())), L"smallest_host_services");
    const base::ModuleReference services = load(base::joinPath(folder, base::libraryFileName(hostapi::kCoreLibrary)));
    const base::ModuleReference module = load(base::libraryFileName(hostapi::kCommandModule));
    g_document.drawing = OdDbDatabase::readFile(drawing);

    g_input.points = {{0, 0, 0}, {10, 5, 0}};
    run("Ray");
    g_input.texts = {L"Name", block};
    run("AttSync");

    auto* const plainText = base::findFunction<OdString(const wchar_t*)>(module.get(), hostapi::deEscapeString.name);
    if (!plainText) throw std::runtime_error("the module lacks a function");
    g_input.printMessage(L"%s", plainText(L"opens {\\C1;90%%d}").c_str());

    g_document.drawing->writeFile(output);
    g_document.drawing = nullptr;
}

}  // namespace

int main(int count, char** argumentBytes) {
    base::setUpConsole();
    const std::vector<std::string> arguments = base::commandLine(count, argumentBytes);
    try {
        if (arguments.size() != 4) throw std::runtime_error("usage: smallest_host DRAWING OUTPUT BLOCK");
        work(base::fromUtf8(arguments[1]), base::fromUtf8(arguments[2]), base::fromUtf8(arguments[3]));
        return 0;
    } catch (const std::exception& error) {
        base::writeTo(base::Stream::kError, std::string("smallest_host: ") + error.what() + "\n");
        return 1;
    }
}
