// The exported functions: hostapi/services.h says what they do.

#include "hostapi/services.h"

#include <cmath>
#include <cstring>
#include <set>

#include "base/format.h"
#include "base/modules.h"
#include "base/resources.h"
#include "base/text.h"
#include "dialogs/boxes.h"
#include "drawingdb/plot_style.h"
#include "torvelhost/commands/command_factory.h"
#include "torvelhost/lines/progress.h"
#include "torvelhost/lines/units.h"
#include "torvelhost/program/color_dialog.h"
#include "torvelhost/session/application.h"

namespace {

using host::Application;
using host::VariableValue;

Application::Session* session() {
    Application* application = Application::current();
    return application ? application->session() : nullptr;
}

// ---- host functions by number

HostApplication* hostApplication() { return Application::current(); }

void refreshDisplay(int regenerate) {
    Application::Session* current = session();
    if (!current) return;
    Application::current()->refresh();
    if (regenerate == 1) Application::current()->regenerate(*current->document.database());
}

HostSlideView* slideView() { return Application::current() ? Application::current()->slideView() : nullptr; }

// ---- resource translation: the modules whose resources may be translated

std::set<void*>& translatedModules() {
    static std::set<void*> modules;
    return modules;
}

// ---- units

int drawingUnits(const wchar_t* variable, int standard) {
    if (Application::Session* current = session())
        if (const auto value = current->variables.get(variable))
            if (const auto* number = std::get_if<std::int64_t>(&*value)) return static_cast<int>(*number);
    return standard;
}

template <class T>
bool readVariable(const wchar_t* name, T& value) {
    Application::Session* current = session();
    const auto found = current && name ? current->variables.get(name) : std::nullopt;
    if (!found || !std::holds_alternative<T>(*found)) return false;
    value = std::get<T>(*found);
    return true;
}

}  // namespace

extern "C" {

int hostInterfaceVersion() { return hostapi::kInterfaceVersion; }

hostapi::HostFunction get_host_funcptr(int id) {
    switch (id) {
        case hostapi::kApplicationFunction:
            return reinterpret_cast<hostapi::HostFunction>(&hostApplication);
        case hostapi::kRefreshFunction:
            return reinterpret_cast<hostapi::HostFunction>(&refreshDisplay);
        case hostapi::kSlideViewFunction:
            return reinterpret_cast<hostapi::HostFunction>(&slideView);
        default:
            return nullptr;
    }
}

void new_ICmdFactory(ICmdFactory** factory) {
    host::CommandFactory::instance().addRef();
    *factory = &host::CommandFactory::instance();
}

int _InitResTranslation(void* module) {
    translatedModules().insert(module);
    return 1;
}

int _DeInitResTranslation(void* module) { return translatedModules().erase(module) > 0; }

int _LoadStringNotTrans(void* module, unsigned id, char* buffer, int size) {
    if (!buffer || size <= 0) return 0;
    std::string text = base::toUtf8(base::loadString(module, id));
    text.resize(base::utf8Prefix(text, static_cast<std::size_t>(size) - 1));
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<int>(text.size());
}

// This host speaks one language, and what the user's settings know in another.
void hostTranslateText(const wchar_t* text, CXStringW& translated) {
    translated = text ? text : L"";
    if (Application* const application = Application::current())
        application->profile().readText(L"Translation", translated.c_str(), translated);
}

int getActiveBTRId(OdDbObjectId& block, OdDbDatabase* database) {
    Application::Session* current = session();
    if (!current) return 0;
    if (!database || database == current->document.database()) {
        block = current->document.activeSpaceId();
        return current->document.isModelSpaceActive();
    }
    block = database->currentSpaceId();
    return block == database->modelSpaceId();
}

double getTextOrientation(OdGeVector3d& normal, double rotation, OdDbDatabase*) {
    Application::Session* current = session();
    if (!current) return rotation;
    const OdGeMatrix3d ucs = current->document.ucs();
    normal = ucs.zAxis();
    if (ucs.xAxis() == OdGeVector3d::kXAxis && ucs.yAxis() == OdGeVector3d::kYAxis) return rotation;
    // The user's X axis, seen in the plane of the normal, is where rotations are counted from.
    return drawingdb::normalizedAngle((OdGeMatrix3d::worldToPlane(normal) * ucs.xAxis()).xy().angle() + rotation);
}

void hostGetPlotStyleNames(OdDbDatabase* database, std::vector<CXStringW>& names) {
    Application::Session* current = session();
    if (!database && current) database = current->document.database();
    names = database ? drawingdb::plotStyleNames(*database) : std::vector<CXStringW>();
}

void hostGetDrawingPlane(OdGeMatrix3d& toWorld) {
    Application::Session* current = session();
    toWorld = current ? current->document.ucs() : OdGeMatrix3d::kIdentity;
}

bool hostdbRToS(double value, int units, int precision, CXStringW& text) {
    if (!std::isfinite(value)) return false;
    text = host::lengthToText(value, units < 0 ? drawingUnits(L"LUNITS", host::kDecimal) : units,
                              precision < 0 ? drawingUnits(L"LUPREC", 4) : precision);
    return true;
}

bool hostdbAngToS(double radians, int units, int precision, CXStringW& text) {
    if (!std::isfinite(radians)) return false;
    text = host::angleToText(radians, units < 0 ? drawingUnits(L"AUNITS", host::kDegrees) : units,
                             precision < 0 ? drawingUnits(L"AUPREC", 0) : precision);
    return true;
}

bool hostdbSToR(const wchar_t* text, int, double& value) {
    const auto number = text ? host::textToLength(text) : std::nullopt;
    if (number) value = *number;
    return number.has_value();
}

bool hostdbSToAng(const wchar_t* text, int units, double& radians) {
    if (!text) return false;
    const auto angle = host::textToAngle(text, units < 0 ? drawingUnits(L"AUNITS", host::kDegrees) : units);
    if (angle) radians = *angle;
    return angle.has_value();
}

int hostSelectEntity(const wchar_t* prompt, const wchar_t* keywords, int, hostapi::Pick& pick) {
    Application::Session* current = session();
    return current ? current->selection.pickEntity(prompt, keywords, pick) : hostapi::kCancel;
}

int hostSelectNested(const wchar_t* prompt, int, const hostapi::Pick* at, HostGsSelectionReactor* reactor,
                     hostapi::Pick& pick) {
    Application::Session* current = session();
    return current ? current->selection.pickNested(prompt, at, reactor, pick) : hostapi::kCancel;
}

int hostSelectSet(const wchar_t* prompt, int, OdDbObjectIdArray& entities) {
    Application::Session* current = session();
    return current ? current->selection.pickSet(prompt, entities) : hostapi::kCancel;
}

void hostGetPickFirst(OdDbObjectIdArray& entities) {
    entities.clear();
    if (Application::Session* current = session()) entities = current->selection.pickFirst();
}

void hostSetPickFirst(const OdDbObjectIdArray& entities) {
    if (Application::Session* current = session()) current->selection.setPickFirst(entities);
}

bool hostGetCurrentPick(hostapi::Pick& pick) {
    Application::Session* current = session();
    if (!current || !current->selection.startingPick()) return false;
    pick = *current->selection.startingPick();
    return true;
}

void hostHighlight(OdDbObjectId entity, bool on) {
    if (Application::Session* current = session()) current->selection.highlight(entity, on);
}

bool hostGetVarText(const wchar_t* name, CXStringW& value) {
    Application::Session* current = session();
    const auto found = current && name ? current->variables.get(name) : std::nullopt;
    if (found) value = host::variableText(*found);
    return found.has_value();
}

bool hostGetVarInteger(const wchar_t* name, std::int64_t& value) { return readVariable(name, value); }

bool hostGetVarReal(const wchar_t* name, double& value) { return readVariable(name, value); }

bool hostGetVarPoint(const wchar_t* name, OdGePoint3d& value) { return readVariable(name, value); }

bool hostGetVarVector(const wchar_t* name, OdGeVector3d& value) {
    OdGePoint3d point;
    if (!readVariable(name, point)) return false;
    value = point.asVector();
    return true;
}

bool hostSetVar(const wchar_t* name, const wchar_t* value) {
    Application::Session* current = session();
    std::wstring reason;
    return current && name && value && current->variables.set(name, value, reason);
}

int hostMessageBox(const wchar_t* text, const wchar_t* caption, int kind) {
    static constexpr dialogs::BoxKind kKinds[] = {dialogs::BoxKind::kNotice, dialogs::BoxKind::kWarning,
                                                  dialogs::BoxKind::kError, dialogs::BoxKind::kYesNo,
                                                  dialogs::BoxKind::kYesNoCancel};
    if (!session() || kind < hostapi::kNoticeBox || kind > hostapi::kYesNoCancelBox) return hostapi::kAnswerCancel;
    const host::Progress::Pause pause;
    return static_cast<int>(dialogs::messageBox(kKinds[kind], text ? text : L"", caption ? caption : L""));
}

bool hostSelectColor(OdCmColor& color) {
    const host::Progress::Pause pause;
    return session() && host::chooseColor(color);
}

void hostNotify(const wchar_t* text) {
    // Also while modules are being loaded, before a drawing is open.
    if (Application* application = Application::current())
        if (text) application->terminal().notice(L"[notice] " + std::wstring(text));
}

IProfile* hostGetProfile() { return Application::current() ? &Application::current()->profile() : nullptr; }

IHelpServiceEx* hostGetHelpService() { return Application::current() ? &Application::current()->help() : nullptr; }

IStdDirs* hostGetStdDirs() { return Application::current() ? &Application::current()->folders() : nullptr; }

bool hostProgress(std::uint64_t done, std::uint64_t total) { return host::Progress::tell(done, total); }

int hostUndoGroupDepth(HostDocument* document) { return document ? document->database()->undoGroupDepth() : 0; }

void hostOpenUndoGroup(HostDocument* document) {
    if (document) document->database()->blockUndoRecording(true);
}

void hostCloseUndoGroup(HostDocument* document) {
    if (document) document->database()->blockUndoRecording(false);
}

void hostRollBackUndoGroup(HostDocument* document) {
    if (document) document->database()->rollBackUndoGroup();
}

void hostRedrawEntity(OdDbObjectId entity) {
    if (session()) Application::current()->redraw(entity);
}

void hostRegenerate(OdDbDatabase* database) {
    Application::Session* current = session();
    if (!current) return;
    Application::current()->regenerate(database ? *database : *current->document.database());
}

}  // extern "C"

// The table and the functions say the same.
using hostapi::fits;
static_assert(fits(hostapi::interfaceVersion, &hostInterfaceVersion));
static_assert(fits(hostapi::get_host_funcptr, &get_host_funcptr));
static_assert(fits(hostapi::new_ICmdFactory, &new_ICmdFactory));
static_assert(fits(hostapi::initResTranslation, &_InitResTranslation));
static_assert(fits(hostapi::deInitResTranslation, &_DeInitResTranslation));
static_assert(fits(hostapi::loadStringNotTranslated, &_LoadStringNotTrans));
static_assert(fits(hostapi::translateText, &hostTranslateText));
static_assert(fits(hostapi::getActiveBTRId, &getActiveBTRId));
static_assert(fits(hostapi::getTextOrientation, &getTextOrientation));
static_assert(fits(hostapi::getDrawingPlane, &hostGetDrawingPlane));
static_assert(fits(hostapi::realToText, &hostdbRToS));
static_assert(fits(hostapi::angleToText, &hostdbAngToS));
static_assert(fits(hostapi::textToReal, &hostdbSToR));
static_assert(fits(hostapi::textToAngle, &hostdbSToAng));
static_assert(fits(hostapi::getPlotStyleNames, &hostGetPlotStyleNames));
static_assert(fits(hostapi::selectEntity, &hostSelectEntity));
static_assert(fits(hostapi::selectNested, &hostSelectNested));
static_assert(fits(hostapi::selectSet, &hostSelectSet));
static_assert(fits(hostapi::getPickFirst, &hostGetPickFirst));
static_assert(fits(hostapi::setPickFirst, &hostSetPickFirst));
static_assert(fits(hostapi::getCurrentPick, &hostGetCurrentPick));
static_assert(fits(hostapi::highlight, &hostHighlight));
static_assert(fits(hostapi::getTextVariable, &hostGetVarText));
static_assert(fits(hostapi::getIntegerVariable, &hostGetVarInteger));
static_assert(fits(hostapi::getRealVariable, &hostGetVarReal));
static_assert(fits(hostapi::getPointVariable, &hostGetVarPoint));
static_assert(fits(hostapi::getVectorVariable, &hostGetVarVector));
static_assert(fits(hostapi::setVariable, &hostSetVar));
static_assert(fits(hostapi::messageBox, &hostMessageBox));
static_assert(fits(hostapi::selectColor, &hostSelectColor));
static_assert(fits(hostapi::notify, &hostNotify));
static_assert(fits(hostapi::getProfile, &hostGetProfile));
static_assert(fits(hostapi::getHelpService, &hostGetHelpService));
static_assert(fits(hostapi::getStdDirs, &hostGetStdDirs));
static_assert(fits(hostapi::regenerate, &hostRegenerate));
static_assert(fits(hostapi::progress, &hostProgress));
static_assert(fits(hostapi::undoGroupDepth, &hostUndoGroupDepth));
static_assert(fits(hostapi::openUndoGroup, &hostOpenUndoGroup));
static_assert(fits(hostapi::closeUndoGroup, &hostCloseUndoGroup));
static_assert(fits(hostapi::rollBackUndoGroup, &hostRollBackUndoGroup));
static_assert(fits(hostapi::redrawEntity, &hostRedrawEntity));
