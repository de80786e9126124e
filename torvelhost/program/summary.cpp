#include "torvelhost/program/summary.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "base/json_writer.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/census.h"
#include "drawingdb/layer.h"
#include "drawingdb/readers.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text_style.h"

namespace host {
namespace {

template <class Record, class Each>
void forEachRecord(OdDbObjectId tableId, Each each) {
    if (const auto table = tableId.openIf<OdDbSymbolTable>())
        for (const OdDbObjectId id : table->records())
            if (const auto record = id.openIf<Record>()) each(*record);
}

struct Block {
    OdString name;
    std::size_t references = 0;
    std::vector<OdString> tags;  // of the definitions, in their order
};

struct Layer {
    OdString name;
    std::size_t entities = 0;
    std::vector<const wchar_t*> states;
};

struct TextStyle {
    OdString name, font;
};

struct Summary {
    explicit Summary(OdDbDatabase& database);

    OdDbDatabase& database;
    OdDbCensus census;
    std::vector<Block> blocks;
    std::size_t anonymousBlocks = 0;
    std::vector<Layer> layers;
    std::vector<OdString> layouts;
    std::vector<TextStyle> textStyles;
    std::vector<std::wstring> damage;

    std::size_t objects() const {
        std::size_t count = 0;
        for (const OdDbCensus::Kind& kind : census.kinds) count += kind.count;
        return count;
    }

  private:
    void addBlocks();
    void addLayers();
    void addDamage();
};

template <class Item>
void sortByName(std::vector<Item>& items) {
    std::ranges::stable_sort(
        items, [](const Item& a, const Item& b) { return base::compareNoCase(a.name, b.name) < 0; });
}

Summary::Summary(OdDbDatabase& drawing) : database(drawing), census(drawing), layouts(drawing.layoutNames()) {
    addBlocks();
    addLayers();
    forEachRecord<OdDbTextStyleTableRecord>(database.textStyleTableId(), [this](const OdDbTextStyleTableRecord& style) {
        if (!style.isShapeFile()) textStyles.push_back({style.name(), style.fontFile()});
    });
    sortByName(textStyles);
    addDamage();
}

// References count for the block that they stand for. Blocks without a name of their own are worth a line only where
// references show them as they are: nearly all others are pictures of dimensions.
void Summary::addBlocks() {
    std::map<OdDbObjectId, std::size_t> references;
    for (const auto& [block, count] : census.references) references[drawingdb::blockStoodFor(block)] += count;
    forEachRecord<OdDbBlockTableRecord>(database.blockTableId(), [&](const OdDbBlockTableRecord& record) {
        if (record.isLayout()) return;
        const auto found = references.find(record.objectId());
        const std::size_t count = found == references.end() ? 0 : found->second;
        if (record.isAnonymous()) {
            ++anonymousBlocks;
            if (count == 0) return;
        }
        Block& block = blocks.emplace_back(Block{record.name(), count, {}});
        for (const OdDbObjectId id : record.entities())
            if (const auto definition = id.openIf<OdDbAttributeDefinition>()) block.tags.push_back(definition->tag());
    });
    sortByName(blocks);
}

void Summary::addLayers() {
    std::map<OdString, std::size_t, base::LessNoCase> entities;
    for (const auto& [name, count] : census.layers) entities[name] += count;
    forEachRecord<OdDbLayerTableRecord>(database.layerTableId(), [&](const OdDbLayerTableRecord& record) {
        Layer& layer = layers.emplace_back(Layer{record.name(), 0, {}});
        if (const auto found = entities.find(layer.name); found != entities.end()) {
            layer.entities = found->second;
            entities.erase(found);
        }
        if (record.isOff()) layer.states.push_back(L"off");
        if (record.isFrozen()) layer.states.push_back(L"frozen");
        if (record.isLocked()) layer.states.push_back(L"locked");
        if (!record.isPlottable()) layer.states.push_back(L"not plotted");
    });
    for (const auto& [name, count] : entities) layers.push_back({name, count, {L"not in the table of layers"}});
    sortByName(layers);
}

void Summary::addDamage() {
    for (const OdDbWarning& warning : database.warnings()) damage.push_back(base::fromUtf8(warning.text));
    for (const auto& [name, count] : census.missingBlocks)
        damage.push_back(std::to_wstring(count) + (count == 1 ? L" reference" : L" references") + L" of the block \"" +
                         name + L"\", which is not there");
    if (database.isReadOnly()) damage.emplace_back(L"the drawing can be looked at, but not saved");
}

std::wstring counted(std::size_t count, const wchar_t* one, const wchar_t* many) {
    return std::to_wstring(count) + L" " + (count == 1 ? one : many);
}

// Lines of a heading and what stands under it; a heading with nothing under it is left out.
class Lines {
  public:
    explicit Lines(Terminal& terminal) : terminal_(terminal) {}

    void heading(const wchar_t* words) { heading_ = words; }
    void line(const std::wstring& text) {
        if (!heading_.empty()) terminal_.print(heading_ + L":");
        heading_.clear();
        terminal_.print(L"  " + text);
    }

  private:
    Terminal& terminal_;
    std::wstring heading_;
};

void printText(const Summary& summary, Terminal& terminal) {
    const OdDbDatabase& database = summary.database;
    terminal.print(database.fileName() + L": " + base::widen(database.version()) +
                   (database.isBinary() ? L", binary" : L"") + L", " +
                   counted(summary.objects(), L"object", L"objects"));
    Lines lines(terminal);
    lines.heading(L"Blocks");
    for (const Block& block : summary.blocks) {
        std::wstring text = block.name + L": " + counted(block.references, L"reference", L"references");
        for (const OdString& tag : block.tags) text += (&tag == block.tags.data() ? L"; tags " : L", ") + tag;
        lines.line(text);
    }
    if (summary.anonymousBlocks > 0)
        lines.line(counted(summary.anonymousBlocks, L"block", L"blocks") + L" without a name");
    lines.heading(L"Layers");
    for (const Layer& layer : summary.layers) {
        std::wstring text = layer.name + L": " + counted(layer.entities, L"entity", L"entities");
        for (const wchar_t* state : layer.states) text += std::wstring(L", ") + state;
        lines.line(text);
    }
    lines.heading(L"Layouts");
    for (const OdString& name : summary.layouts) lines.line(name);
    lines.heading(L"Text styles");
    for (const TextStyle& style : summary.textStyles) lines.line(style.name + L": " + style.font);
    for (const bool carried : {false, true}) {
        lines.heading(carried ? L"Kinds without a class here, kept as they are" : L"Kinds");
        for (const OdDbCensus::Kind& kind : summary.census.kinds)
            if (kind.isCarried == carried) lines.line(base::fromUtf8(kind.name) + L": " + std::to_wstring(kind.count));
    }
    lines.heading(L"Damage");
    for (const std::wstring& what : summary.damage) lines.line(what);
}

void printJson(const Summary& summary, Terminal& terminal) {
    const OdDbDatabase& database = summary.database;
    base::JsonWriter json;
    json.beginObject();
    json.text("file", database.fileName());
    json.text("version", base::widen(database.version()));
    json.flag("binary", database.isBinary());
    json.number("objects", summary.objects());
    json.beginList("blocks");
    for (const Block& block : summary.blocks) {
        json.beginObject();
        json.text("name", block.name);
        json.number("references", block.references);
        json.beginList("tags");
        for (const OdString& tag : block.tags) json.text({}, tag);
        json.endList();
        json.endObject();
    }
    json.endList();
    json.number("anonymousBlocks", summary.anonymousBlocks);
    json.beginList("layers");
    for (const Layer& layer : summary.layers) {
        json.beginObject();
        json.text("name", layer.name);
        json.number("entities", layer.entities);
        json.beginList("states");
        for (const wchar_t* state : layer.states) json.text({}, state);
        json.endList();
        json.endObject();
    }
    json.endList();
    json.beginList("layouts");
    for (const OdString& name : summary.layouts) json.text({}, name);
    json.endList();
    json.beginList("textStyles");
    for (const TextStyle& style : summary.textStyles) {
        json.beginObject();
        json.text("name", style.name);
        json.text("font", style.font);
        json.endObject();
    }
    json.endList();
    json.beginList("kinds");
    for (const OdDbCensus::Kind& kind : summary.census.kinds) {
        json.beginObject();
        json.text("name", base::fromUtf8(kind.name));
        json.number("count", kind.count);
        json.flag("entity", kind.isEntity);
        json.flag("carried", kind.isCarried);
        json.endObject();
    }
    json.endList();
    json.beginList("damage");
    for (const std::wstring& what : summary.damage) json.text({}, what);
    json.endList();
    json.endObject();
    terminal.print(base::fromUtf8(json.json()));
}

}  // namespace

void printSummary(OdDbDatabase& database, bool asJson, Terminal& terminal) {
    const Summary summary(database);
    if (asJson)
        printJson(summary, terminal);
    else
        printText(summary, terminal);
}

}  // namespace host
