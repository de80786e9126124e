#include "fake_host.h"

#include <cstdarg>

#include "base/format.h"
#include "hostapi/input.h"

namespace fake {
namespace {

using Table = void*;

// An object is its table alone: all state is in host().
struct Object {
    const Table* table;
};

template <class Function>
Table entry(Function* function) {
    return reinterpret_cast<Table>(function);
}

void unexpectedCall() { std::abort(); }
const Table kUnexpected = entry(unexpectedCall);

// ---- the factory

std::uint32_t addFactoryReference(void*) { return static_cast<std::uint32_t>(++host().factoryReferences); }
std::uint32_t releaseFactory(void*) { return static_cast<std::uint32_t>(--host().factoryReferences); }
int addCommand(void*, const char* name, CommandCreator creator) {
    host().registrations.push_back({name, creator, L"", 0});
    return 1;
}
int addCommandInGroup(void*, const char* name, CommandCreator creator, const wchar_t* group, int flags,
                      std::uintptr_t reserved1, std::uintptr_t reserved2) {
    if (reserved1 != 0 || reserved2 != 0) unexpectedCall();
    host().registrations.push_back({name, creator, group, flags});
    return 1;
}
const Table factoryTable[] = {
    entry(addFactoryReference), entry(releaseFactory), kUnexpected, kUnexpected,      kUnexpected, kUnexpected,
    entry(addCommandInGroup),   kUnexpected,           kUnexpected, entry(addCommand)};
Object factoryObject{factoryTable};

// ---- the input channel

int getPoint(void*, const OdGePoint3d*, OdGePoint3d* point, const wchar_t* prompt, const wchar_t*, int flags,
             std::uintptr_t, void* tracker) {
    host().pointPrompts.push_back(prompt);
    if (flags != 4 || host().points.empty()) return hostapi::kCancel;
    const PointReply reply = std::move(host().points.front());
    host().points.pop_front();
    if (reply.whileAsked) reply.whileAsked(tracker);
    if (reply.result == hostapi::kValue) *point = reply.point;
    return reply.result;
}

int getKeyword(void*, const wchar_t* prompt, const wchar_t*, int, std::uintptr_t textOut, std::uintptr_t) {
    host().keywordPrompts.push_back(prompt);
    if (host().keywords.empty()) return hostapi::kCancel;
    const KeywordReply reply = std::move(host().keywords.front());
    host().keywords.pop_front();
    if (reply.result == hostapi::kValue) *reinterpret_cast<std::wstring*>(textOut) = reply.text;
    return reply.result;
}

void printMessage(void*, const wchar_t* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    host().messages.push_back(base::vformat(format, arguments));
    va_end(arguments);
}

int getDistance(void*, const OdGePoint3d*, double* distance, const wchar_t* prompt, const wchar_t*, int flags,
                std::uintptr_t) {
    host().distancePrompts.push_back(prompt);
    if (flags != 12 || host().distances.empty()) return hostapi::kCancel;
    *distance = host().distances.front();
    host().distances.pop_front();
    return hostapi::kValue;
}

bool getString(void*, std::wstring* text) {
    if (host().texts.empty()) return false;
    *text = host().texts.front();
    host().texts.pop_front();
    return true;
}

void setCurrentEntity(void*, int kind, void*) { host().announcedKinds.push_back(kind); }

const Table inputTable[] = {entry(getPoint),
                            kUnexpected,
                            entry(getKeyword),
                            kUnexpected,
                            entry(printMessage),
                            kUnexpected,
                            entry(getString),
                            entry(getDistance),
                            kUnexpected,
                            kUnexpected,
                            kUnexpected,
                            kUnexpected,
                            kUnexpected,
                            kUnexpected,
                            kUnexpected,
                            kUnexpected,
                            kUnexpected,
                            kUnexpected,
                            entry(setCurrentEntity)};
Object inputObject{inputTable};

// ---- the document and the application

void* documentDatabase(void*) { return host().database.get(); }
void* documentInput(void*) { return &inputObject; }
const Table documentTable[] = {entry(documentDatabase), kUnexpected, kUnexpected, entry(documentInput)};
Object documentObject{documentTable};

void* activeDocument(void*) { return host().database ? &documentObject : nullptr; }
const Table applicationTable[] = {entry(activeDocument), kUnexpected,         kUnexpected, kUnexpected, kUnexpected,
                                  kUnexpected,           kUnexpected,         kUnexpected, kUnexpected, kUnexpected,
                                  kUnexpected,           kUnexpected,         kUnexpected, kUnexpected, kUnexpected,
                                  kUnexpected,           entry(documentInput)};
Object applicationObject{applicationTable};

void* application() {
    ++host().applicationRequests;
    return &applicationObject;
}

}  // namespace

Host& host() {
    static Host theHost;
    return theHost;
}

void newCommandFactory(ICmdFactory** factory) {
    ++host().factoryReferences;
    *factory = reinterpret_cast<ICmdFactory*>(&factoryObject);
}

HostFunction hostFunction(int id) { return id == 2 ? reinterpret_cast<HostFunction>(application) : nullptr; }

}  // namespace fake
