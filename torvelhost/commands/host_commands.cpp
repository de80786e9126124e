#include "torvelhost/commands/host_commands.h"

#include <cmath>
#include <limits>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/dictionary.h"
#include "torvelhost/lines/progress.h"
#include "torvelhost/lines/units.h"

namespace host {
namespace {

using hostapi::kCancel;
using hostapi::kEmpty;
using hostapi::kFirstKeyword;
using hostapi::kValue;

const HostCommand kHostCommands[] = {
    {kUndoCommand, &HostCommands::undo, true},
    {L"ZOOM", &HostCommands::zoom, true},
    {L"REGEN", &HostCommands::regen, true},
    {L"LAYER", &HostCommands::layer},
    {L"UCS", &HostCommands::ucs},
    {L"INSERT", &HostCommands::insert},
    {L"SETVAR", &HostCommands::setVariable},
    {L"LAYOUT", &HostCommands::layout, true},
    {L"MSPACE", &HostCommands::enterViewport, true},
    {L"PSPACE", &HostCommands::leaveViewport, true},
    {L"SAVE", &HostCommands::save},
};

CMD_RUNSTATUS statusOf(int result) { return result == kCancel ? kCommandCancelled : kCommandFinished; }

bool isInteger(const Reply& reply) { return base::parseInteger(std::wstring_view(reply.text)).has_value(); }

}  // namespace

const HostCommand* findHostCommand(std::wstring_view name) {
    for (const HostCommand& command : kHostCommands)
        if (base::equalsNoCase(name, command.name)) return &command;
    return nullptr;
}

CMD_RUNSTATUS HostCommands::refused(const std::wstring& why) {
    session.input.terminal().error(why);
    return kCommandCancelled;
}

int HostCommands::askNumber(const wchar_t* prompt, double& number) {
    return session.input.ask(
        prompt, nullptr, L"a number",
        [&](const Reply& reply, std::wstring&) {
            const auto typed = textToLength(reply.text);
            if (typed) number = *typed;
            return typed.has_value();
        });
}

// ---- UNDO

CMD_RUNSTATUS HostCommands::undo() {
    std::int64_t count = 1;
    const int result = session.input.askIfNext(
        L"Number of commands to undo <1>", L"an integer above 0",
        [&](const Reply& reply, std::wstring&) {
            const auto number = base::parseInteger(std::wstring_view(reply.text));
            if (!number || *number < 1) return false;
            count = *number;
            return true;
        },
        isInteger);
    if (result == kCancel) return kCommandCancelled;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto command = session.document.undoCommand();
        if (!command) {
            session.input.terminal().notice(i == 0 ? L"There is nothing to undo." : L"Everything has been undone.");
            break;
        }
        session.input.terminal().notice(*command);
    }
    return kCommandFinished;
}

// ---- ZOOM and REGEN

CMD_RUNSTATUS HostCommands::zoom() {
    Document& document = session.document;
    enum { kAll, kCenter, kExtents, kPrevious, kWindow };
    std::optional<OdGePoint3d> corner;
    double factor = 0;
    const int result = session.input.ask(L"Specify corner of window, enter a scale factor (nX), or [%s]",
                                         L"All Center Extents Previous Window", L"a point or a scale factor",
                                         [&](const Reply& reply, std::wstring& reason) {
                                             if (const auto typed = parsePoint(reply.text)) {
                                                 corner = document.toWorld(*typed, reason);
                                                 return corner.has_value();
                                             }
                                             std::wstring_view number = reply.text;
                                             if (number.ends_with(L'x') || number.ends_with(L'X'))
                                                 number.remove_suffix(1);
                                             const auto typed = base::parseReal(number);
                                             if (typed && *typed > 0) factor = *typed;
                                             return factor > 0;
                                         });
    if (result == kCancel) return kCommandCancelled;
    if (result == kEmpty) return kCommandFinished;
    if (result == kValue && !corner) {
        View view = document.zoomedView();
        view.height /= factor;
        document.setZoomedView(view);
        return kCommandFinished;
    }
    switch (result) {
        case kFirstKeyword + kAll:
        case kFirstKeyword + kExtents: {
            const auto extents = document.extents();
            if (extents) document.setZoomedView(document.zoomedViewOf(document.seenInZoomedView(*extents)));
            return kCommandFinished;
        }
        case kFirstKeyword + kPrevious:
            return document.setPreviousView() ? kCommandFinished : refused(L"There is no view before this one");
        case kFirstKeyword + kCenter: {
            OdGePoint3d center;
            double height = document.zoomedView().height;
            if (session.input.askPoint(L"Specify center point", nullptr, center) != kValue) return kCommandCancelled;
            if (askNumber(L"Enter height", height) == kCancel) return kCommandCancelled;
            if (!(height > 0)) return refused(L"a height is more than 0");
            document.setZoomedView({document.seenInZoomedView({center, center}).center().xy(), height});
            return kCommandFinished;
        }
        case kFirstKeyword + kWindow: {
            OdGePoint3d first;
            if (session.input.askPoint(L"Specify first corner", nullptr, first) != kValue) return kCommandCancelled;
            corner = first;
            break;
        }
    }
    document.setLastPoint(*corner);
    OdGePoint3d opposite;
    if (session.input.askPoint(L"Specify opposite corner", nullptr, opposite) != kValue) return kCommandCancelled;
    // The corners as they are seen: the box around a turned box would be larger.
    const auto seen = [&](const OdGePoint3d& point) { return document.seenInZoomedView({point, point}).center(); };
    const OdGeExtents3d window(seen(*corner), seen(opposite));
    if (window.diagonal().xy().isZeroLength()) return refused(L"the window has no size");
    document.setZoomedView(document.zoomedViewOf(window));
    return kCommandFinished;
}

CMD_RUNSTATUS HostCommands::regen() {
    application.regenerate(*session.document.database());
    return kCommandFinished;
}

// ---- LAYER

namespace {
enum LayerOption { kListLayers, kMakeLayer, kSetLayer, kNewLayer, kOn, kOff, kFreeze, kThaw, kLock, kUnlock, kColor };
constexpr wchar_t kLayerOptions[] = L"? Make Set New ON OFF Freeze Thaw LOck Unlock Color";
}  // namespace

CMD_RUNSTATUS HostCommands::layer() {
    for (;;) {
        const int result = session.input.getKeyword(L"Enter an option [%s]", kLayerOptions, 0, 0, 0);
        if (result == kCancel) return kCommandCancelled;
        if (result == kEmpty) return kCommandFinished;
        changeLayers(result - kFirstKeyword);
    }
}

void HostCommands::changeLayers(int option) {
    OdDbDatabase* database = session.document.database();
    const auto table = database->layerTableId().openAs<OdDbSymbolTable>();
    if (option == kListLayers) {
        for (OdDbObjectId id : table->records())
            session.input.printMessage(L"%s", id.openAs<OdDbLayerTableRecord>()->name().c_str());
        return;
    }
    std::int64_t color = 0;
    const auto isColor = [&](const Reply& reply, std::wstring&) {
        const auto typed = base::parseInteger(std::wstring_view(reply.text));
        if (typed) color = *typed;
        return color >= 1 && color <= 255;
    };
    if (option == kColor &&
        session.input.ask(L"New color number (1-255)", nullptr, L"a color number between 1 and 255", isColor) != kValue)
        return;
    OdString name;
    const bool isNew = option == kMakeLayer || option == kNewLayer, onlyOne = isNew || option == kSetLayer;
    const auto isUsable = [&](const Reply& reply, std::wstring& reason) {
        name = reply.text;
        const bool known = !database->findLayer(name).isNull() || (!onlyOne && name == L"*");
        if (option == kNewLayer && known)
            reason = L"the drawing has a layer \"" + name + L"\" already";
        else if (!isNew && !known)
            reason = L"the drawing has no layer \"" + name + L"\"";
        else if (!known && (name.empty() || name.find_first_of(L"<>/\\\":;?*|,=`") != name.npos))
            reason = L"\"" + name + L"\" is no name for a layer";
        return reason.empty();
    };
    if (session.input.ask(onlyOne ? L"Enter layer name" : L"Enter layer name (* for all)", nullptr, L"a layer name",
                          isUsable, Input::Asked::kText) != kValue)
        return;
    if (isNew) addLayer(name);
    if (option == kMakeLayer || option == kSetLayer) {
        std::wstring reason;
        if (!session.variables.set(L"CLAYER", name, reason)) refused(reason);
    }
    if (onlyOne) return;
    for (OdDbObjectId id : table->records()) {
        const auto record = id.openAs<OdDbLayerTableRecord>();
        if (name != L"*" && !base::equalsNoCase(record->name(), name)) continue;
        record->upgradeOpen();
        switch (option) {
            case kOn:
            case kOff:
                record->setIsOff(option == kOff);
                break;
            case kFreeze:
            case kThaw:
                // The current layer is never frozen.
                if (option == kThaw || !base::equalsNoCase(record->name(), database->headerText("$CLAYER", L"0")))
                    record->setIsFrozen(option == kFreeze);
                break;
            case kLock:
            case kUnlock:
                record->setIsLocked(option == kLock);
                break;
            case kColor:
                record->setColor(OdCmColor::fromIndex(static_cast<int>(color)));
                break;
        }
    }
}

// One that is there already is as good.
void HostCommands::addLayer(const OdString& name) {
    OdDbDatabase* database = session.document.database();
    if (database->findLayer(name)) return;
    const auto layer = OdDbLayerTableRecord::createObject();
    if (const auto standard = database->findLayer(L"0").openIf<OdDbLayerTableRecord>()) {
        layer->setPropertiesFrom(*standard);
        layer->setIsOff(false);
        layer->setIsFrozen(false);
        layer->setIsLocked(false);
    }
    layer->setName(name);
    database->layerTableId().openAs<OdDbSymbolTable>(OdDb::forWrite)->add(layer);
}

// ---- UCS

CMD_RUNSTATUS HostCommands::ucs() {
    Document& document = session.document;
    enum { kWorld, kX, kY, kZ };
    OdGePoint3d origin;
    const int result = session.input.askPoint(L"Specify origin of UCS or [%s] <World>", L"World X Y Z", origin);
    const OdGeMatrix3d current = document.ucs();
    switch (result) {
        case kCancel:
            return kCommandCancelled;
        case kEmpty:
        case kFirstKeyword + kWorld:
            document.setUcs(OdGeMatrix3d::kIdentity);
            return kCommandFinished;
        case kValue:
            break;
        default: {
            const int axis = result - kFirstKeyword;
            double angle = torvel::kPi / 2;
            const wchar_t* const prompt = axis == kX   ? L"Specify rotation angle about X axis <90>"
                                          : axis == kY ? L"Specify rotation angle about Y axis <90>"
                                                       : L"Specify rotation angle about Z axis <90>";
            if (session.input.getAngle(angle, prompt, nullptr, 0, 0) == kCancel) return kCommandCancelled;
            const OdGeVector3d about = axis == kX   ? OdGeVector3d::kXAxis
                                       : axis == kY ? OdGeVector3d::kYAxis
                                                    : OdGeVector3d::kZAxis;
            document.setUcs(current * OdGeMatrix3d::rotation(angle, about));
            return kCommandFinished;
        }
    }
    // The axes stay as they are as far as no point says otherwise.
    OdGeVector3d x = current.xAxis(), z = current.zAxis();
    OdGePoint3d point;
    int given = session.input.askPoint(L"Specify point on X axis or <accept>", nullptr, point);
    if (given == kCancel) return kCommandCancelled;
    if (given == kValue) {
        x = (point - origin).normal();
        if (x.isZeroLength()) return refused(L"the X axis has no direction");
        if (z.crossProduct(x).isZeroLength()) z = current.xAxis();
        given = session.input.askPoint(L"Specify point on the XY plane or <accept>", nullptr, point);
        if (given == kCancel) return kCommandCancelled;
        if (given == kValue) z = x.crossProduct(point - origin);
    }
    const OdGeVector3d y = z.crossProduct(x).normal();
    if (y.isZeroLength()) return refused(L"the three points lie on one line");
    document.setUcs(OdGeMatrix3d::coordSystem(origin, x, y, x.crossProduct(y)));
    return kCommandFinished;
}

// ---- INSERT

CMD_RUNSTATUS HostCommands::insert() {
    OdDbDatabase* database = session.document.database();
    OdString name;
    OdDbObjectId block;
    const int named = session.input.ask(
        L"Enter block name", nullptr, L"a block name",
        [&](const Reply& reply, std::wstring& reason) {
            block = database->findBlock(reply.text);
            if (!block) reason = L"the drawing has no block \"" + reply.text + L"\"";
            return !block.isNull();
        },
        Input::Asked::kText);
    if (named != kValue) return kCommandCancelled;

    OdGePoint3d point;
    if (session.input.askPoint(L"Specify insertion point", nullptr, point) != kValue) return kCommandCancelled;
    double x = 1, angle = 0;
    if (askNumber(L"Enter X scale factor <1>", x) == kCancel) return kCommandCancelled;
    double y = x;
    if (askNumber(L"Enter Y scale factor <use X scale factor>", y) == kCancel) return kCommandCancelled;
    if (session.input.getAngle(angle, L"Specify rotation angle <0>", nullptr, 0, 0) == kCancel)
        return kCommandCancelled;
    if (x == 0 || y == 0) return refused(L"a scale factor is not 0");

    const OdGeMatrix3d ucs = session.document.ucs();
    OdDbObjectId inserted;
    {
        const auto reference = OdDbBlockReference::createObject();
        reference->setDatabaseDefaults(database);
        reference->setBlockTableRecord(block);
        reference->setNormal(ucs.zAxis());
        reference->setPosition(point);
        reference->setScaleFactors(OdGeScale3d(x, y, std::fabs(x)));
        // The angle is typed in the user's plane and stored in the plane of the normal.
        const OdGeVector3d direction =
            OdGeMatrix3d::worldToPlane(ucs.zAxis()) * (ucs * OdGeVector3d(std::cos(angle), std::sin(angle), 0));
        reference->setRotation(ucs == OdGeMatrix3d::kIdentity ? angle : direction.xy().angle());
        const auto space = session.document.activeSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
        inserted = space->appendOdDbEntity(reference.get());
    }
    return fillAttributes(inserted, block) ? kCommandFinished : kCommandCancelled;
}

// Asks for the value of each attribute that has one to ask for. A cancel leaves the reference with what was answered so
// far.
bool HostCommands::fillAttributes(OdDbObjectId referenceId, OdDbObjectId block) {
    const auto reference = referenceId.openAs<OdDbBlockReference>(OdDb::forWrite);
    const auto record = block.openAs<OdDbBlockTableRecord>();
    for (OdDbObjectId id : record->entities()) {
        const auto definition = id.openIf<OdDbAttributeDefinition>();
        if (!definition || definition->isConstant()) continue;
        OdString value;
        int result = kEmpty;
        if (!definition->isPreset()) {
            const OdString prompt = definition->prompt().empty() ? definition->tag() : definition->prompt();
            const OdString standard = definition->textString();
            result = session.input.askText((standard.empty() ? prompt : prompt + L" <" + standard + L">").c_str(),
                                           nullptr, value);
            if (result == kCancel) return false;
        }
        const auto attribute = OdDbAttribute::createObject();
        reference->appendAttribute(attribute.get());
        attribute->setAttributeFromBlock(*definition, reference->blockTransform());
        if (result == kValue) attribute->setTextString(value);
    }
    return true;
}

// ---- SETVAR

CMD_RUNSTATUS HostCommands::setVariable() {
    OdString name;
    const int named = session.input.ask(
        L"Enter variable name or [%s]", L"?", L"a variable name",
        [&](const Reply& reply, std::wstring& reason) {
            if (!session.variables.get(reply.text)) {
                reason = L"there is no variable \"" + reply.text + L"\"";
                return false;
            }
            name = base::toUpper(reply.text);
            return true;
        },
        Input::Asked::kText);
    if (named == kCancel || named == kEmpty) return statusOf(named);
    if (named == kFirstKeyword) {
        for (const std::wstring& each : session.variables.names())
            session.input.printMessage(L"%s = %s", each.c_str(), variableText(*session.variables.get(each)).c_str());
        return kCommandFinished;
    }
    const std::wstring current = variableText(*session.variables.get(name));
    if (session.variables.isReadOnly(name)) {
        session.input.printMessage(L"%s = %s (read only)", name.c_str(), current.c_str());
        return kCommandFinished;
    }
    const std::wstring prompt = L"Enter new value for " + name + L" <" + current + L">";
    const int result = session.input.ask(
        prompt.c_str(), nullptr, L"a value",
        [&](const Reply& reply, std::wstring& reason) { return session.variables.set(name, reply.text, reason); },
        Input::Asked::kText);
    return statusOf(result);
}

// ---- layouts and viewports

CMD_RUNSTATUS HostCommands::layout() {
    OdDbDatabase* database = session.document.database();
    const auto makeCurrent = [&](const Reply& reply, std::wstring& reason) {
        if (database->setCurrentLayout(reply.text)) return true;
        reason = L"the drawing has no layout \"" + reply.text + L"\"";
        return false;
    };
    const std::wstring current = L" <" + database->currentLayoutName() + L">";
    for (;;) {
        const int result = session.input.ask((L"Enter layout to make current or [%s]" + current).c_str(), L"? Set",
                                             L"a layout", makeCurrent);
        if (result == kFirstKeyword) {
            for (const OdString& name : database->layoutNames()) session.input.printMessage(L"%s", name.c_str());
            continue;
        }
        if (result != kFirstKeyword + 1) return statusOf(result);
        return statusOf(session.input.ask((L"Enter layout to make current" + current).c_str(), nullptr, L"a layout",
                                          makeCurrent, Input::Asked::kText));
    }
}

CMD_RUNSTATUS HostCommands::enterViewport() {
    const std::vector<OdDbObjectId> viewports = session.document.floatingViewports();
    if (viewports.empty()) {
        const bool model = session.document.database()->currentSpaceId() == session.document.database()->modelSpaceId();
        return refused(model ? L"MSPACE: a layout must be current" : L"MSPACE: the layout has no floating viewport");
    }
    const auto find = [&](const Reply& reply) {
        const auto handles = parseHandles(reply.text);
        const auto number = base::parseInteger(std::wstring_view(reply.text));
        for (OdDbObjectId id : viewports) {
            if (handles && handles->size() == 1 && id.handle() == handles->front()) return id;
            if (number && id.openAs<OdDbViewport>()->number() == *number) return id;
        }
        return OdDbObjectId();
    };
    OdDbObjectId chosen = viewports.front();
    const std::wstring prompt =
        L"Enter viewport number or handle <" + std::to_wstring(chosen.openAs<OdDbViewport>()->number()) + L">";
    const int result = session.input.askIfNext(
        prompt.c_str(), L"a floating viewport of this layout",
        [&](const Reply& reply, std::wstring&) {
            const OdDbObjectId id = find(reply);
            if (id) chosen = id;
            return !id.isNull();
        },
        [&](const Reply& reply) { return isInteger(reply) || !find(reply).isNull(); });
    if (result == kCancel) return kCommandCancelled;
    session.document.database()->setActiveViewport(chosen);
    return kCommandFinished;
}

CMD_RUNSTATUS HostCommands::leaveViewport() {
    OdDbDatabase* database = session.document.database();
    if (database->currentSpaceId() == database->modelSpaceId()) return refused(L"PSPACE: a layout must be current");
    database->setActiveViewport(OdDbObjectId());
    return kCommandFinished;
}

// ---- SAVE

CMD_RUNSTATUS HostCommands::save() {
    OdDbDatabase* database = session.document.database();
    OdString name = database->fileName();
    const std::wstring prompt = name.empty() ? L"Enter file name" : L"Enter file name <" + name + L">";
    const int result = session.input.askText(prompt.c_str(), nullptr, name);
    if (result == kCancel || name.empty()) return kCommandCancelled;
    const Progress progress(session.input.terminal(), L"Saving " + name);
    session.document.save(name);
    return kCommandFinished;
}

}  // namespace host
