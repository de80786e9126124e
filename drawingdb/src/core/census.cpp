#include "drawingdb/census.h"

#include <algorithm>

#include "drawingdb/src/core/core.h"

using namespace drawingdb;

OdDbCensus::OdDbCensus(OdDbDatabase& database) {
    Core& core = database.core();
    core.flushAll();
    std::vector<Kind> byType;
    std::unordered_map<std::string_view, std::size_t> layersInFile;  // by their bytes there
    for (std::uint32_t i = 0; i < core.stubs.size(); ++i) {
        Stub& stub = core.at(i);
        if (stub.gone() || !core.isObject(stub)) continue;
        if (byType.size() <= stub.type) byType.resize(stub.type + std::size_t{1});
        Kind& kind = byType[stub.type];
        ++kind.count;
        if (!core.isEntity(stub)) continue;
        kind.isEntity = true;
        const std::string_view layer = core.groupText(stub, 8);
        ++layersInFile[layer.empty() ? std::string_view("0") : layer];
        if (stub.type != rtInsert) continue;
        const std::string_view name = core.groupText(stub, 2);
        if (Stub* const block = core.blockByRawName(name))
            ++references[OdDbObjectId(block)];
        else
            ++missingBlocks[decodeText(name, core.format)];
    }
    for (std::size_t type = 0; type < byType.size(); ++type) {
        if (byType[type].count == 0) continue;
        Kind& kind = kinds.emplace_back(std::move(byType[type]));
        kind.name = core.types.name(static_cast<std::uint16_t>(type));
        kind.isCarried = type >= rtFirstCarried;
    }
    std::ranges::sort(kinds, {}, &Kind::name);
    for (const auto& [bytes, count] : layersInFile) layers[decodeText(bytes, core.format)] += count;
}
