// Every function that a host offers to its modules: the library it lives in, its exported C name, its signature.
//
// A module links to none of them; it looks the name up in the library at every use, and a function that is not there
// makes the operation do nothing:
//
//     OdDbObjectId space;
//     if (auto* activeSpace = base::findFunction(hostapi::getActiveBTRId)) activeSpace(space, database);
//
// Rows without a library are looked up along the ways that the binding of the module describes.
//
// Ownership: pointers to services belong to the host; objects behind ids are not opened by a call unless it says so. A
// result of type int is an input result (see input.h) unless the row says otherwise.
#pragma once

#include "drawingdb/color.h"
#include "drawingdb/field.h"
#include "drawingdb/ge.h"
#include "drawingdb/mtext.h"
#include "drawingdb/text.h"
#include "hostapi/command.h"
#include "hostapi/host_names.h"
#include "hostapi/selection.h"
#include "hostapi/settings.h"
#include "hostapi/slides.h"
#include "hostapi/text.h"

class HostApplication;
class HostDocument;
class HostEdInput;

namespace hostapi {

template <class Signature>
struct Service {
    const wchar_t* library;  ///< bare name, or null
    const char* name;
};

/// Whether a function is what the row says; for static_assert beside the functions.
template <class Signature>
constexpr bool fits(const Service<Signature>&, Signature*) {
    return true;
}
template <class Signature, class Other>
constexpr bool fits(const Service<Signature>&, Other*) {
    return false;
}

// ---- finding the host

/// The version of what these headers say. It grows only when something in them changes its meaning, its signature or
/// its slot; what is added comes as a service of its own and leaves it.
constexpr int kInterfaceVersion = 1;
/// The kInterfaceVersion that the host was built with. The module asks for it while it is being loaded; a host that
/// does not tell is taken to fit.
inline constexpr Service<int()> interfaceVersion{kCoreLibrary, "hostInterfaceVersion"};

/// In the program itself: the handle and the name of the main module.
inline constexpr Service<void*()> GetMainDllInstance{nullptr, "GetMainDllInstance"};
inline constexpr Service<const wchar_t*()> GetMainDllNameW{nullptr, "GetMainDllNameW"};
inline constexpr Service<void*()> GetMainDllInstanceEx{kBridgeModule, "GetMainDllInstanceEx"};
/// In the main module. Gives a new reference.
inline constexpr Service<void(ICmdFactory** factory)> new_ICmdFactory{nullptr, "new_ICmdFactory"};

/// In the main module: the host functions by number; null for a number that is not known.
using HostFunction = void (*)();
inline constexpr Service<HostFunction(int id)> get_host_funcptr{nullptr, "get_host_funcptr"};
constexpr int kApplicationFunction = 2;  ///< ApplicationFunction
constexpr int kRefreshFunction = 12;     ///< RefreshFunction
constexpr int kSlideViewFunction = 17;   ///< SlideViewFunction
using ApplicationFunction = HostApplication*();
/// Shows the drawing again as it stands; 1 regenerates it as well.
using RefreshFunction = void(int regenerate);
/// The view that slides are drawn into; not null while a document is open.
using SlideViewFunction = HostSlideView*();

// ---- resource translation, in the core library or else in the resource library

/// Not zero when the module's resources may be translated from now on.
inline constexpr Service<int(void* module)> initResTranslation{kCoreLibrary, "_InitResTranslation"};
inline constexpr Service<int(void* module)> deInitResTranslation{kCoreLibrary, "_DeInitResTranslation"};
/// The module's string `id` in UTF-8 as it stands in its resources. Returns its length without the final zero; 0 when
/// there is no such string. Cut to fit, never inside a character.
inline constexpr Service<int(void* module, unsigned id, char* buffer, int size)> loadStringNotTranslated{
    kCoreLibrary, "_LoadStringNotTrans"};
/// A literal text in the user's language; the text itself when there is no translation.
inline constexpr Service<void(const wchar_t* text, CXStringW& translated)> translateText{kCoreLibrary,
                                                                                         "hostTranslateText"};

// ---- spaces, units and angles

/// The block record where the user draws: model space, also through a floating viewport, or the current layout's paper
/// space. A null database means the active document's. Returns 1 for model space, 0 for a paper space.
inline constexpr Service<int(OdDbObjectId& block, OdDbDatabase* database)> getActiveBTRId{kUtilityLibrary,
                                                                                          "getActiveBTRId"};
/// The normal of new text in the user coordinate system; returns the rotation to store for `rotation` (both radians).
inline constexpr Service<double(OdGeVector3d& normal, double rotation, OdDbDatabase* database)> getTextOrientation{
    kUtilityLibrary, "getTextOrientation"};
/// The user coordinate system of the active space, in which points are typed: maps its coordinates to the world's. The
/// drawing plane is its XY plane.
inline constexpr Service<void(OdGeMatrix3d& toWorld)> getDrawingPlane{kUtilityLibrary, "hostGetDrawingPlane"};
/// A length as text. Units: 1 scientific, 2 decimal, 3 engineering, 4 architectural, 5 fractional; -1 the drawing's.
/// Precision: decimal places, or the power of two of the denominator; -1 the drawing's. False for a value that is not
/// finite.
inline constexpr Service<bool(double value, int units, int precision, CXStringW& text)> realToText{kUtilityLibrary,
                                                                                                   "hostdbRToS"};
/// An angle in radians as text. Units: 0 degrees, 1 degrees with minutes and seconds, 2 grads, 3 radians, 4 surveyor's;
/// -1 the drawing's.
inline constexpr Service<bool(double radians, int units, int precision, CXStringW& text)> angleToText{kUtilityLibrary,
                                                                                                      "hostdbAngToS"};
/// The way back; every form of length is understood, whatever the units. False when the text is none.
inline constexpr Service<bool(const wchar_t* text, int units, double& value)> textToReal{kUtilityLibrary, "hostdbSToR"};
inline constexpr Service<bool(const wchar_t* text, int units, double& radians)> textToAngle{kUtilityLibrary,
                                                                                            "hostdbSToAng"};

// ---- plot styles

/// The names of the plot styles that the drawing's objects can have, by layer and by block left out. A null database
/// means the active document's.
inline constexpr Service<void(OdDbDatabase* database, std::vector<CXStringW>& names)> getPlotStyleNames{
    kUtilityLibrary, "hostGetPlotStyleNames"};

// ---- selection

/// Asks for one entity of the current space. kValue with a null entity: the pick met nothing.
inline constexpr Service<int(const wchar_t* prompt, const wchar_t* keywords, int flags, Pick& pick)> selectEntity{
    kSelectionLibrary, "hostSelectEntity"};
/// Asks for an object inside references, down to the innermost. With `at` nothing is asked: the objects under that pick
/// are the candidates. The reactor, if any, chooses among the candidates; kValue with a null `nested`: none was taken.
inline constexpr Service<int(const wchar_t* prompt, int flags, const Pick* at, HostGsSelectionReactor* reactor,
                             Pick& pick)>
    selectNested{kSelectionLibrary, "hostSelectNested"};
/// Asks for any number of entities until Enter. kValue, also for an empty set, or kCancel. A command that uses the
/// pick-first set gets that, when it is not empty, without a question the first time.
inline constexpr Service<int(const wchar_t* prompt, int flags, OdDbObjectIdArray& entities)> selectSet{
    kSelectionLibrary, "hostSelectSet"};
/// The entities selected before the command began. Setting replaces them.
inline constexpr Service<void(OdDbObjectIdArray& entities)> getPickFirst{kSelectionLibrary, "hostGetPickFirst"};
inline constexpr Service<void(const OdDbObjectIdArray& entities)> setPickFirst{kSelectionLibrary, "hostSetPickFirst"};
/// The pick that made the host start the command (a double click); false when there was none.
inline constexpr Service<bool(Pick& pick)> getCurrentPick{kSelectionLibrary, "hostGetCurrentPick"};
inline constexpr Service<void(OdDbObjectId entity, bool on)> highlight{kSelectionLibrary, "hostHighlight"};

// ---- system variables, by name without "$"; case does not matter

/// False, and the value untouched, when there is no such variable or it is of another kind. The text of any variable
/// can be had.
inline constexpr Service<bool(const wchar_t* name, CXStringW& value)> getTextVariable{kCoreLibrary, "hostGetVarText"};
inline constexpr Service<bool(const wchar_t* name, std::int64_t& value)> getIntegerVariable{kCoreLibrary,
                                                                                            "hostGetVarInteger"};
inline constexpr Service<bool(const wchar_t* name, double& value)> getRealVariable{kCoreLibrary, "hostGetVarReal"};
inline constexpr Service<bool(const wchar_t* name, OdGePoint3d& value)> getPointVariable{kCoreLibrary,
                                                                                         "hostGetVarPoint"};
inline constexpr Service<bool(const wchar_t* name, OdGeVector3d& value)> getVectorVariable{kCoreLibrary,
                                                                                           "hostGetVarVector"};
/// From a text as a user types it. False when there is no such variable, it cannot be set, or the value does not suit.
inline constexpr Service<bool(const wchar_t* name, const wchar_t* value)> setVariable{kCoreLibrary, "hostSetVar"};

// ---- telling the user

enum MessageKind : int { kNoticeBox = 0, kWarningBox = 1, kErrorBox = 2, kYesNoBox = 3, kYesNoCancelBox = 4 };
enum MessageAnswer : int { kAnswerOk = 1, kAnswerCancel = 2, kAnswerYes = 6, kAnswerNo = 7 };
/// A message box; returns a MessageAnswer.
inline constexpr Service<int(const wchar_t* text, const wchar_t* caption, int kind)> messageBox{kEventLibrary,
                                                                                                "hostMessageBox"};
/// Asks for a colour, `color` being shown at first; false, and `color` untouched, when the user cancels.
inline constexpr Service<bool(OdCmColor& color)> selectColor{kEventLibrary, "hostSelectColor"};
/// A notification that asks nothing.
inline constexpr Service<void(const wchar_t* text)> notify{kEventLibrary, "hostNotify"};

/// How far the command is: `done` of `total` steps. False when the user wants it to stop; the caller then ends by an
/// exception, and the host takes the command back. Cheap, but no call for every object of a drawing.
inline constexpr Service<bool(std::uint64_t done, std::uint64_t total)> progress{kEventLibrary, "hostProgress"};

// ---- undo groups of a document. What is done while one is open can be taken back together.

/// How many are open.
inline constexpr Service<int(HostDocument* document)> undoGroupDepth{kCoreLibrary, "hostUndoGroupDepth"};
inline constexpr Service<void(HostDocument* document)> openUndoGroup{kCoreLibrary, "hostOpenUndoGroup"};
/// Closes the innermost one: its changes belong to what is around it.
inline constexpr Service<void(HostDocument* document)> closeUndoGroup{kCoreLibrary, "hostCloseUndoGroup"};
/// Takes back what the innermost one has done, and closes it.
inline constexpr Service<void(HostDocument* document)> rollBackUndoGroup{kCoreLibrary, "hostRollBackUndoGroup"};

// ---- services that are objects

inline constexpr Service<IProfile*()> getProfile{kCoreLibrary, "hostGetProfile"};
inline constexpr Service<IHelpServiceEx*()> getHelpService{kCoreLibrary, "hostGetHelpService"};
inline constexpr Service<IStdDirs*()> getStdDirs{kCoreLibrary, "hostGetStdDirs"};

// ---- modules that are loaded by file name for one use and unloaded at once

/// Asks for a new field; true when the user made one. It is in no database and evaluated for the active document.
inline constexpr Service<bool(OdDbFieldPtr& field)> insertField{kFieldModule, "insertField"};
/// Asks what a field shall be from now on; true when it was changed. The field given stays as it is: a new one takes
/// its place.
inline constexpr Service<bool(OdDbFieldPtr& field)> changeField{kFieldModule, "changeField"};

/// Edits the contents and the width of a multi-line text that lies in a drawing, fields included. `context` is the name
/// of the variable that says how the editor presents itself ("ATTIPE"). False when the user left the text alone.
inline constexpr Service<bool(OdDbMText& text, const wchar_t* context)> editMText{kTextEditorModule, "editMText"};
/// Makes a multi-line text with that style, first contents and width; `onScreen` begins it where the user points. True
/// when the user accepted it: `made` then lies in the space where the user draws, for the caller to use and to erase.
inline constexpr Service<bool(HostDocument* document, OdDbObjectId style, const wchar_t* text, double width,
                              bool onScreen, OdSmartPtr<OdDbMText>& made)>
    newMTextAtt{kTextEditorModule, "newMTextAtt"};
/// Edits a single-line text that lies in a drawing, an attribute too, fields included. It is not open for write while
/// the user edits; what has changed is written then. False when the user left it alone.
inline constexpr Service<bool(OdDbText& text, HostEdInput& input)> editText{kTextEditorModule, "editText"};

// ---- the view

/// Shows one entity as it is now, after a change of its visibility, say.
inline constexpr Service<void(OdDbObjectId entity)> redrawEntity{kGraphicsLibrary, "hostRedrawEntity"};
/// Evaluates the drawing's fields and shows it anew; a slide that was shown goes. A null database means the active
/// document's.
inline constexpr Service<void(OdDbDatabase* database)> regenerate{kGraphicsLibrary, "hostRegenerate"};

}  // namespace hostapi
