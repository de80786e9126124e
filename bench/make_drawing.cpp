#include "bench/make_drawing.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <random>
#include <vector>

#include "base/number.h"
#include "drawingdb/database.h"

namespace bench {
namespace {

constexpr std::uint64_t kModelSpace = 0x1F, kBlockTable = 0x1, kLayerTable = 0x2, kStyleTable = 0x3;
constexpr std::uint64_t kFirstHandle = 0x100;
constexpr std::array<const char*, 5> kLayers = {"DOORS", "WINDOWS", "ROOMS", "PIPES", "NOTES"};

struct Point {
    double x = 0;
    double y = 0;
};

// An attribute definition, and what its values look like on the references.
struct Definition {
    const char* tag;
    const char* prompt;
    const char* value;  // "#" stands for the number of the reference
    Point point;
    double height;
    int horizontal;  // 0: left; otherwise the text hangs on an alignment point, vertically centred
    bool note;       // on the layer and in the text style of notes
};

constexpr std::size_t kSurplus = 5;

// The first five are the definitions as they are now; the third of them is new, the sixth exists on references only.
struct Block {
    const char* layer;
    std::array<Definition, 6> definitions;
    std::array<std::size_t, kAttributesPerReference> onReferences;
};

constexpr std::array<Block, kBlockNames.size()> kBlocks = {{
    {kLayers[0],
     {{{"NUMBER", "Door number?", "D#", {0, 0}, 2.5, 1, false},
       {"WIDTH", "Clear width?", "90", {0, -4}, 2.5, 0, false},
       {"FIRE_RATING", "Fire rating?", "T30", {0, -8}, 2, 0, false},
       {"MAKER", "Maker?", "Muster GmbH", {0, -12}, 2, 0, true},
       {"MARK", "Mark?", "A-#", {0, -16}, 2, 0, false},
       {"HANDING", "", "L", {0, -20}, 2, 0, false}}},
     {1, 0, 3, 4, kSurplus}},
    {kLayers[1],
     {{{"NOTE", "First note?", "see sheet 4", {2, 0}, 2, 0, false},
       {"MARK", "Mark?", "W#", {2, -4}, 3.5, 4, false},
       {"U_VALUE", "U value?", "1.1", {2, -8}, 2, 0, false},
       {"NOTE", "Second note?", "", {2, -12}, 2, 0, true},
       {"WIDTH", "Width?", "120", {2, -16}, 2, 0, false},
       {"GLAZING", "", "triple", {2, -20}, 2, 0, false}}},
     {4, 1, 0, 3, kSurplus}},
    {kLayers[2],
     {{{"ROOM", "Room?", "2.#", {0, 1}, 2.5, 0, false},
       {"USER", "User?", "N. N.", {0, -3}, 2.5, 2, true},
       {"SERVICED", "Last service?", "2026-01-15", {0, -7}, 2, 0, false},
       {"ASSET", "Asset number?", "INV-#", {0, -11}, 2, 0, false},
       {"MODEL", "Model?", "Bench 160", {0, -15}, 2, 0, false},
       {"COST", "", "349.00", {0, -19}, 2, 0, false}}},
     {3, 1, 0, 4, kSurplus}},
    {kLayers[3],
     {{{"TAG_NO", "Tag number?", "V-#", {1, 2}, 3, 1, true},
       {"SIZE", "Nominal size?", "DN50", {1, -2}, 2.5, 0, false},
       {"MEDIUM", "Medium?", "water", {1, -6}, 2, 0, false},
       {"PRESSURE", "Nominal pressure?", "PN16", {1, -10}, 2, 0, false},
       {"REMARK", "Remark?", "", {1, -14}, 2, 0, false},
       {"OPERATOR", "", "manual", {1, -18}, 2, 0, false}}},
     {1, 0, 3, 4, kSurplus}},
}};

// Where a reference stands. Mirroring and unequal scales are left out: few drawings have many of them.
struct Placement {
    Point point;
    double scale = 1;
    double rotation = 0;  // degrees

    Point operator()(Point p) const {
        const double angle = rotation * std::numbers::pi / 180;
        const double c = rotation == 90 ? 0 : std::cos(angle), s = std::sin(angle);
        return {point.x + scale * (p.x * c - p.y * s), point.y + scale * (p.x * s + p.y * c)};
    }
};

// Groups in the spelling that most programs write.
class Groups {
  public:
    void text(int code, std::string_view value) {
        char digits[8];
        const auto end = std::to_chars(digits, digits + sizeof digits, code).ptr;
        out_.append(static_cast<std::size_t>(code < 10 ? 2 : code < 100 ? 1 : 0), ' ');
        out_.append(digits, end) += '\n';
        out_.append(value) += '\n';
    }
    void integer(int code, int value) { text(code, std::to_string(value)); }
    void real(int code, double value) { text(code, base::realToText(value)); }
    void handle(int code, std::uint64_t value) { text(code, base::hexToText(value)); }
    void point(int code, Point p) {
        real(code, p.x);
        real(code + 10, p.y);
        real(code + 20, 0);
    }
    void entity(const char* type, std::uint64_t handleOfEntity, std::uint64_t owner, const char* layer) {
        text(0, type);
        handle(5, handleOfEntity);
        handle(330, owner);
        text(100, "AcDbEntity");
        text(8, layer);
    }
    void tableRecord(const char* type, std::uint64_t handleOfRecord, std::uint64_t table, const char* zone,
                     const char* name) {
        text(0, type);
        handle(5, handleOfRecord);
        handle(330, table);
        text(100, "AcDbSymbolTableRecord");
        text(100, zone);
        text(2, name);
    }
    // The part of an attribute or a definition that both have.
    void attributeText(const Definition& definition, std::string_view value, const Placement& placement) {
        text(100, "AcDbText");
        const Point place = placement(definition.point);
        // Where a centred text begins is for the reader to compute anew; a rough place will do.
        const double shift = definition.horizontal == 0 ? 0 : static_cast<double>(value.size()) * definition.height / 4;
        point(10, placement({definition.point.x - shift, definition.point.y - definition.height / 2}));
        real(40, definition.height * placement.scale);
        text(1, value);
        if (placement.rotation != 0) real(50, placement.rotation);
        if (definition.note) text(7, "NOTES");
        if (definition.horizontal != 0) {
            integer(72, definition.horizontal);
            point(11, place);
        }
    }
    void attributeEnd(const Definition& definition) {
        integer(70, 0);
        if (definition.horizontal != 0) integer(74, 2);
    }
    const std::string& bytes() const { return out_; }
    void clear() { out_.clear(); }

  private:
    std::string out_;
};

// An empty drawing whose tables and sections are filled up on the way.
class Frame {
  public:
    explicit Frame(const std::function<void(std::string_view)>& sink) : sink_(sink) { std::erase(bytes_, '\r'); }
    // Hands over what stands before the end (`closer`) of the table or section `name`.
    void upTo(std::string_view name, std::string_view closer) {
        const std::size_t begin = bytes_.find("\n  2\n" + std::string(name) + "\n", at_);
        handOver(bytes_.find("  0\n" + std::string(closer) + "\n", begin));
    }
    void put(Groups& groups) {
        sink_(groups.bytes());
        groups.clear();
    }
    void handleSeed(std::uint64_t seed) {
        const std::string_view variable = "$HANDSEED\n  5\n";
        handOver(bytes_.find(variable) + variable.size());
        sink_(base::hexToText(seed));
        at_ = bytes_.find('\n', at_);
    }
    void rest() { handOver(bytes_.size()); }

  private:
    void handOver(std::size_t end) {
        sink_(std::string_view(bytes_).substr(at_, end - at_));
        at_ = end;
    }

    const std::function<void(std::string_view)>& sink_;
    std::string bytes_ = OdDbDatabase::createNew()->writeBytes();
    std::size_t at_ = 0;
};

// The handles of a block: its record, begin, end, a line, an arc, then the definitions.
std::uint64_t blockHandle(std::size_t block, std::size_t part) { return kFirstHandle + 0x10 * (1 + block) + part; }

const char* layerOf(const Definition& definition) { return definition.note ? kLayers.back() : "0"; }

std::string valueOf(const Definition& definition, std::size_t reference) {
    std::string value = definition.value;
    if (const std::size_t place = value.find('#'); place != std::string::npos)
        value.replace(place, 1, std::to_string(reference));
    return value;
}

void writeTables(Frame& frame, Groups& groups) {
    frame.upTo("LAYER", "ENDTAB");
    for (std::size_t i = 0; i < kLayers.size(); ++i) {
        groups.tableRecord("LAYER", kFirstHandle + i, kLayerTable, "AcDbLayerTableRecord", kLayers[i]);
        groups.integer(70, 0);
        groups.integer(62, static_cast<int>(i) + 1);
        groups.text(6, "Continuous");
        groups.integer(370, 25);
        groups.handle(390, 0xF);
    }
    frame.put(groups);

    frame.upTo("STYLE", "ENDTAB");
    groups.tableRecord("STYLE", kFirstHandle + 0xF, kStyleTable, "AcDbTextStyleTableRecord", "NOTES");
    groups.integer(70, 0);
    groups.real(40, 0);
    groups.real(41, 0.8);
    groups.real(50, 0);
    groups.integer(71, 0);
    groups.real(42, 2.5);
    groups.text(3, "isocp.shx");
    groups.text(4, "");
    frame.put(groups);

    frame.upTo("BLOCK_RECORD", "ENDTAB");
    for (std::size_t i = 0; i < kBlocks.size(); ++i) {
        groups.tableRecord("BLOCK_RECORD", blockHandle(i, 0), kBlockTable, "AcDbBlockTableRecord", kBlockNames[i]);
        groups.handle(340, 0);
        groups.integer(70, 4);
        groups.integer(280, 1);
        groups.integer(281, 0);
    }
    frame.put(groups);
}

void writeBlock(Groups& groups, std::size_t number) {
    const Block& block = kBlocks[number];
    const std::uint64_t record = blockHandle(number, 0);
    groups.entity("BLOCK", blockHandle(number, 1), record, "0");
    groups.text(100, "AcDbBlockBegin");
    groups.text(2, kBlockNames[number]);
    groups.integer(70, 2);
    groups.point(10, {});
    groups.text(3, kBlockNames[number]);
    groups.text(1, "");

    groups.entity("LINE", blockHandle(number, 3), record, "0");
    groups.text(100, "AcDbLine");
    groups.point(10, {});
    groups.point(11, {10, 0});
    groups.entity("ARC", blockHandle(number, 4), record, "0");
    groups.text(100, "AcDbCircle");
    groups.point(10, {});
    groups.real(40, 10);
    groups.text(100, "AcDbArc");
    groups.real(50, 0);
    groups.real(51, 90);
    for (std::size_t i = 0; i < kAttributesPerReference; ++i) {
        const Definition& definition = block.definitions[i];
        groups.entity("ATTDEF", blockHandle(number, 5 + i), record, layerOf(definition));
        groups.attributeText(definition, "?", Placement());
        groups.text(100, "AcDbAttributeDefinition");
        groups.integer(280, 0);
        groups.text(3, definition.prompt);
        groups.text(2, definition.tag);
        groups.attributeEnd(definition);
        groups.integer(280, 1);
    }

    groups.entity("ENDBLK", blockHandle(number, 2), record, "0");
    groups.text(100, "AcDbBlockEnd");
}

void writeReference(Groups& groups, std::size_t number, std::uint64_t handle, const Placement& placement) {
    const Block& block = kBlocks[number % kBlocks.size()];
    groups.entity("INSERT", handle, kModelSpace, block.layer);
    groups.text(100, "AcDbBlockReference");
    groups.integer(66, 1);
    groups.text(2, kBlockNames[number % kBlocks.size()]);
    groups.point(10, placement.point);
    if (placement.scale != 1)
        for (const int code : {41, 42, 43}) groups.real(code, placement.scale);
    if (placement.rotation != 0) groups.real(50, placement.rotation);
    for (std::size_t i = 0; i < kAttributesPerReference; ++i) {
        const Definition& definition = block.definitions[block.onReferences[i]];
        groups.entity("ATTRIB", handle + 1 + i, handle, layerOf(definition));
        groups.attributeText(definition, valueOf(definition, number), placement);
        groups.text(100, "AcDbAttribute");
        groups.text(2, definition.tag);
        groups.attributeEnd(definition);
    }
    groups.entity("SEQEND", handle + kAttributesPerReference + 1, handle, block.layer);
}

}  // namespace

void makeDrawing(std::size_t references, const std::function<void(std::string_view)>& sink) {
    constexpr std::uint64_t kHandlesPerReference = kAttributesPerReference + 2;
    const std::uint64_t firstReference = blockHandle(kBlocks.size(), 0);

    Frame frame(sink);
    Groups groups;
    frame.handleSeed(firstReference + references * kHandlesPerReference);
    writeTables(frame, groups);
    frame.upTo("BLOCKS", "ENDSEC");
    for (std::size_t i = 0; i < kBlocks.size(); ++i) writeBlock(groups, i);
    frame.put(groups);

    frame.upTo("ENTITIES", "ENDSEC");
    std::mt19937 random(2018);  // the same numbers with every compiler
    const auto perRow = static_cast<std::size_t>(std::sqrt(static_cast<double>(references))) + 1;
    for (std::size_t i = 0; i < references; ++i) {
        constexpr double kCell = 50;
        Placement placement;
        // To a tenth of a unit, as people place things.
        placement.point = {kCell * static_cast<double>(i % perRow) + static_cast<double>(random() % 300) / 10,
                           kCell * static_cast<double>(i / perRow) + static_cast<double>(random() % 300) / 10};
        if (random() % 4 == 0) placement.rotation = 90;
        if (random() % 16 == 0) placement.rotation = 37.5;
        if (random() % 8 == 0) placement.scale = 1.5;
        writeReference(groups, i, firstReference + i * kHandlesPerReference, placement);
        if (groups.bytes().size() > 1 << 20) frame.put(groups);
    }
    frame.put(groups);
    frame.rest();
}

std::string makeDrawing(std::size_t references) {
    std::string bytes;
    makeDrawing(references, [&bytes](std::string_view piece) { bytes += piece; });
    return bytes;
}

}  // namespace bench
