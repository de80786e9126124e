// WHATIS: what an object is, a fact a line.
#include "base/number.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/layer.h"
#include "drawingdb/layout.h"
#include "drawingdb/mtext.h"
#include "drawingdb/readers.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text_style.h"
#include "torvelhost/commands/host_commands.h"

namespace host::commands {
namespace {

std::wstring number(double value) { return base::widen(base::realToText(value)); }

std::wstring point(const OdGePoint3d& place) {
    return number(place.x) + L"," + number(place.y) + L"," + number(place.z);
}

std::wstring degrees(double radians) { return number(radians * 180 / drawingdb::kPi); }

OdString blockName(OdDbObjectId block) {
    const auto record = block.openIf<OdDbBlockTableRecord>();
    return record ? record->name() : OdString();
}

// "LAYER #1F", with its name where it has one.
std::wstring called(OdDbObjectId id) {
    const auto object = id.open();
    if (!object) return L"none";
    std::wstring text = base::fromUtf8(object->dxfName());
    if (!object->handle().isNull()) text += L" #" + object->handle().text();
    if (const auto* const record = drawingdb::as<OdDbSymbolTableRecord>(*object))
        text += L" \"" + record->name() + L"\"";
    return text;
}

// Of a dynamic block in any of its forms.
std::size_t referencesOf(const OdDbBlockTableRecord& block) {
    std::size_t count = block.blockReferenceIds(false).size();
    const auto blocks = block.database()->blockTableId().openIf<OdDbSymbolTable>();
    if (!blocks) return count;
    for (const OdDbObjectId id : blocks->records())
        if (id != block.objectId() && drawingdb::blockStoodFor(id) == block.objectId())
            count += id.openAs<OdDbBlockTableRecord>()->blockReferenceIds(false).size();
    return count;
}

class Facts {
  public:
    explicit Facts(Input& input) : input_(input) {}

    void tell(OdDbObjectId id) const;

  private:
    void fact(const std::wstring& name, std::wstring_view value) const {
        // A line stays one.
        const std::wstring shown = base::replaceAll(base::replaceAll(value, L"\r", L""), L"\n", L"\\n");
        input_.printMessage(L"%s: %s", name.c_str(), shown.c_str());
    }

    void entity(const OdDbEntity& entity) const;
    void text(const OdDbText& text) const;
    void reference(const OdDbBlockReference& reference) const;
    void record(const OdDbSymbolTableRecord& record) const;
    void block(const OdDbBlockTableRecord& block) const;

    Input& input_;
};

void Facts::text(const OdDbText& text) const {
    if (const auto* const attribute = drawingdb::as<OdDbAttributeText>(text)) {
        fact(L"tag", attribute->tag());
        if (const auto* const definition = drawingdb::as<OdDbAttributeDefinition>(text))
            fact(L"prompt", definition->prompt());
        std::wstring modes;
        if (attribute->isInvisible()) modes += L" invisible";
        if (attribute->isConstant()) modes += L" constant";
        if (attribute->isVerifiable()) modes += L" verified";
        if (attribute->isPreset()) modes += L" preset";
        if (attribute->isMultiLine()) modes += L" multi-line";
        if (!modes.empty()) fact(L"modes", modes.substr(1));
    }
    fact(L"text", text.textString());
    fact(L"text style", text.textStyleName());
    fact(L"height", number(text.height()));
    fact(L"position", point(text.position()));
}

void Facts::reference(const OdDbBlockReference& reference) const {
    const OdDbObjectId shown = reference.blockTableRecord(), meant = drawingdb::blockStoodFor(shown);
    fact(L"block", shown ? blockName(meant) : reference.blockName() + L" (not there)");
    if (meant != shown) fact(L"shown by", reference.blockName());
    fact(L"position", point(reference.position()));
    const OdGeScale3d scale = reference.scaleFactors();
    fact(L"scale", point({scale.sx, scale.sy, scale.sz}));
    fact(L"rotation", degrees(reference.rotation()));
    if (reference.rows() > 1 || reference.columns() > 1)
        fact(L"rows and columns", std::to_wstring(reference.rows()) + L" x " + std::to_wstring(reference.columns()));
    for (const OdDbObjectId id : reference.attributes())
        if (const auto attribute = id.openIf<OdDbAttribute>())
            fact(L"attribute " + attribute->tag(), attribute->textString());
}

void Facts::entity(const OdDbEntity& entity) const {
    fact(L"layer", entity.layer());
    if (entity.color() != OdCmColor()) fact(L"color", entity.color().colorNameForDisplay());
    if (!base::equalsNoCase(entity.linetype(), L"BYLAYER")) fact(L"linetype", entity.linetype());
    if (entity.isInvisibleEntity()) fact(L"invisible", L"yes");
    if (const auto* const ofReference = drawingdb::as<OdDbBlockReference>(entity)) {
        reference(*ofReference);
    } else if (const auto* const ofText = drawingdb::as<OdDbText>(entity)) {
        text(*ofText);
    } else if (const auto* const paragraphs = drawingdb::as<OdDbMText>(entity)) {
        fact(L"text", paragraphs->contents());
        fact(L"position", point(paragraphs->location()));
    }
    OdGeExtents3d box;
    if (entity.geomExtents(box)) fact(L"extents", point(box.minPoint()) + L" to " + point(box.maxPoint()));
}

void Facts::block(const OdDbBlockTableRecord& block) const {
    if (const OdDbObjectId meant = drawingdb::blockStoodFor(block.objectId()); meant != block.objectId())
        fact(L"stands for", blockName(meant));
    std::size_t count = 0;
    std::wstring tags;
    for (const OdDbObjectId id : block.entities()) {
        ++count;
        if (const auto definition = id.openIf<OdDbAttributeDefinition>()) tags += L" " + definition->tag();
    }
    fact(L"entities", std::to_wstring(count));
    if (block.isLayout()) return;
    fact(L"references", std::to_wstring(referencesOf(block)));
    fact(L"base point", point(block.origin()));
    if (!tags.empty()) fact(L"tags", tags.substr(1));
}

void Facts::record(const OdDbSymbolTableRecord& record) const {
    fact(L"name", record.name());
    if (const auto* const ofBlock = drawingdb::as<OdDbBlockTableRecord>(record)) {
        block(*ofBlock);
    } else if (const auto* const layer = drawingdb::as<OdDbLayerTableRecord>(record)) {
        fact(L"color", layer->color().colorNameForDisplay());
        fact(L"linetype", layer->linetype());
        std::wstring states = layer->isOff() ? L"off" : L"on";
        if (layer->isFrozen()) states += L" frozen";
        if (layer->isLocked()) states += L" locked";
        fact(L"state", states);
    } else if (const auto* const style = drawingdb::as<OdDbTextStyleTableRecord>(record)) {
        fact(L"font", style->fontFile());
    }
}

void Facts::tell(OdDbObjectId id) const {
    const auto object = id.open();
    fact(L"kind", base::fromUtf8(object->dxfName()));
    if (!object->handle().isNull()) fact(L"handle", object->handle().text());
    // What an entity lies in says more than what its record names as its owner.
    const OdDbObjectId container = id.containerId();
    if (const OdDbObjectId owner = container ? container : object->ownerId()) fact(L"owner", called(owner));
    if (const auto* const asEntity = drawingdb::as<OdDbEntity>(*object)) {
        entity(*asEntity);
    } else if (const auto* const asRecord = drawingdb::as<OdDbSymbolTableRecord>(*object)) {
        record(*asRecord);
    } else if (const auto* const layout = drawingdb::as<OdDbLayout>(*object)) {
        fact(L"name", layout->layoutName());
        fact(L"block", called(layout->blockTableRecordId()));
    } else if (const auto* const dictionary = drawingdb::as<OdDbDictionary>(*object)) {
        for (const OdDbDictionary::Entry& entry : dictionary->entries()) fact(L"entry " + entry.name, called(entry.id));
    }
    if (const OdDbObjectId dictionary = object->extensionDictionary())
        fact(L"extension dictionary", called(dictionary));
}

// A handle alone may name any object, no entity too.
OdDbObjectId namedObject(OdDbDatabase& database, const std::wstring& text) {
    const auto names = parseObjects(text);
    if (!names || names->size() != 1 || names->front().number > 0) return {};
    const OdDbObjectId id = database.getObjectId(names->front().handle);
    return id.isValid() ? id : OdDbObjectId();
}

}  // namespace

CMD_RUNSTATUS whatIs(HostRun& run) {
    const Facts facts(run.input);
    // What was selected before is what is asked about.
    if (const OdDbObjectIdArray selected = run.session.selection.pickFirst(); !selected.empty()) {
        for (const OdDbObjectId id : selected) {
            if (id != selected.front()) run.input.printMessage(L"");
            facts.tell(id);
        }
        return kCommandFinished;
    }
    OdDbObjectId chosen;
    const auto accept = [&](const Reply& reply, std::wstring& reason) {
        if (reply.quoted) return false;
        chosen = namedObject(*run.database, reply.text);
        if (chosen) return true;
        const auto pick = run.session.selection.pickByText(reply.text, reason);
        if (!pick) return false;
        // A path says which object inside is meant; a point means what lies there as a whole.
        chosen = pick->hasPoint ? pick->entity : pick->nested;
        return true;
    };
    const int result =
        run.input.ask(L"Select an object, or enter a handle", nullptr, L"an object", accept, {Expected::kEntity});
    if (result != kValue) return kCommandCancelled;
    if (!chosen) return run.refused(L"WHATIS: nothing was found there");
    facts.tell(chosen);
    return kCommandFinished;
}

}  // namespace host::commands
