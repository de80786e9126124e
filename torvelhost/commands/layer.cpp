// LAYER: makes layers and changes their states.
#include "drawingdb/layer.h"

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/symbol_table.h"
#include "torvelhost/commands/host_commands.h"

namespace host::commands {
namespace {

enum LayerOption { kListLayers, kMakeLayer, kSetLayer, kNewLayer, kOn, kOff, kFreeze, kThaw, kLock, kUnlock, kColor };
constexpr wchar_t kLayerOptions[] = L"? Make Set New ON OFF Freeze Thaw LOck Unlock Color";

// One that is there already is as good.
void addLayer(OdDbDatabase& database, const OdString& name) {
    if (database.findLayer(name)) return;
    const auto layer = OdDbLayerTableRecord::createObject();
    if (const auto standard = database.findLayer(L"0").openIf<OdDbLayerTableRecord>()) {
        layer->setPropertiesFrom(*standard);
        layer->setIsOff(false);
        layer->setIsFrozen(false);
        layer->setIsLocked(false);
    }
    layer->setName(name);
    database.layerTableId().openAs<OdDbSymbolTable>(OdDb::forWrite)->add(layer);
}

void changeLayers(HostRun& run, int option) {
    OdDbDatabase* const database = run.database;
    const auto table = database->layerTableId().openAs<OdDbSymbolTable>();
    if (option == kListLayers) {
        for (OdDbObjectId id : table->records())
            run.input.printMessage(L"%s", id.openAs<OdDbLayerTableRecord>()->name().c_str());
        return;
    }
    std::int64_t color = 0;
    const auto isColor = [&](const Reply& reply, std::wstring&) {
        const auto typed = base::parseInteger(std::wstring_view(reply.text));
        if (typed) color = *typed;
        return color >= 1 && color <= 255;
    };
    if (option == kColor &&
        run.input.ask(L"New color number (1-255)", nullptr, L"a color number between 1 and 255", isColor) != kValue)
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
        else if (!known && !isRecordName(name))
            reason = L"\"" + name + L"\" is no name for a layer";
        return reason.empty();
    };
    if (run.input.ask(onlyOne ? L"Enter layer name" : L"Enter layer name (* for all)", nullptr, L"a layer name",
                      isUsable, {Expected::kText}) != kValue)
        return;
    if (isNew) addLayer(*database, name);
    if (option == kMakeLayer || option == kSetLayer) {
        std::wstring reason;
        if (!run.variables.set(L"CLAYER", name, reason)) run.refused(reason);
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

}  // namespace

CMD_RUNSTATUS layer(HostRun& run) {
    for (;;) {
        const int result = run.input.getKeyword(L"Enter an option [%s]", kLayerOptions, 0, 0, 0);
        if (result == kCancel) return kCommandCancelled;
        if (result == kEmpty) return kCommandFinished;
        changeLayers(run, result - kFirstKeyword);
    }
}

}  // namespace host::commands
