#include "torvelcmd2/attributes/drawing_lists.h"

#include "base/text.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text_style.h"

namespace torvel {
namespace {

void fillNames(dialogs::Dialog& dialog, int list, OdDbObjectId tableId) {
    const auto table = tableId.openIf<OdDbSymbolTable>();
    if (!table) return;  // an old drawing of bare entities
    for (OdDbObjectId id : table->records()) dialog.addChoice(list, id.openAs<OdDbSymbolTableRecord>()->name());
}

int findName(const dialogs::Dialog& dialog, int list, const OdString& name) {
    for (int choice = 0; choice < dialog.choiceCount(list); ++choice)
        if (base::equalsNoCase(dialog.choiceText(list, choice), name)) return choice;
    return -1;
}

}  // namespace

void fillTextStyles(dialogs::Dialog& dialog, int list, const OdDbDatabase& database) {
    dialog.clearChoices(list);
    const auto table = database.textStyleTableId().openIf<OdDbSymbolTable>();
    if (!table) return;
    for (OdDbObjectId id : table->records())
        if (const auto style = id.openIf<OdDbTextStyleTableRecord>(); style && !style->isShapeFile())
            dialog.addChoice(list, style->name());
}

void fillLayers(dialogs::Dialog& dialog, int list, const OdDbDatabase& database) {
    dialog.clearChoices(list);
    fillNames(dialog, list, database.layerTableId());
}

void fillLinetypes(dialogs::Dialog& dialog, int list, const OdDbDatabase& database) {
    dialog.clearChoices(list);
    for (const wchar_t* const name : {L"ByLayer", L"ByBlock"})
        if (!database.findLinetype(name)) dialog.addChoice(list, name);
    fillNames(dialog, list, database.linetypeTableId());
}

void selectName(dialogs::Dialog& dialog, int list, const OdString& name) {
    dialog.select(list, findName(dialog, list, name));
}

}  // namespace torvel
