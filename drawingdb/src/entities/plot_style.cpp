#include "drawingdb/plot_style.h"

#include "drawingdb/dictionary.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/object_access.h"

namespace drawingdb {
namespace {

constexpr wchar_t kDictionary[] = L"ACAD_PLOTSTYLENAME";

OdDbDictionaryPtr plotStyles(const OdDbDatabase& database) {
    const auto named = database.namedObjectsDictionaryId().openIf<OdDbDictionary>();
    return named ? named->getAt(kDictionary).openIf<OdDbDictionary>() : OdDbDictionaryPtr();
}

}  // namespace

bool holdsPlotStyles(const OdDbDatabase& database) { return database.core().format.version >= version::v2000; }

std::vector<OdString> plotStyleNames(const OdDbDatabase& database) {
    std::vector<OdString> names;
    if (const OdDbDictionaryPtr styles = plotStyles(database))
        for (OdDbDictionary::Entry& entry : styles->entries()) names.push_back(std::move(entry.name));
    return names;
}

OdDbObjectId findPlotStyle(const OdDbDatabase& database, const OdString& name) {
    const OdDbDictionaryPtr styles = plotStyles(database);
    return styles ? styles->getAt(name) : OdDbObjectId();
}

PlotStyle plotStyleOf(const OdDbEntity& entity) {
    const std::int32_t kind = ObjectAccess::plotStyleKind(entity);
    switch (static_cast<PlotStyleKind>(kind)) {
        case PlotStyleKind::kByName:
            return {PlotStyleKind::kByName, ObjectAccess::plotStyleId(entity)};
        case PlotStyleKind::kByBlock:
        case PlotStyleKind::kStandard:
            return {static_cast<PlotStyleKind>(kind), {}};
        default:
            return {};
    }
}

OdString plotStyleName(const OdDbEntity& entity) {
    const PlotStyle style = plotStyleOf(entity);
    if (style.style.isNull()) return {};
    if (const OdDbDictionaryPtr styles = plotStyles(*entity.database()))
        for (OdDbDictionary::Entry& entry : styles->entries())
            if (entry.id == style.style) return std::move(entry.name);
    return {};
}

void setPlotStyle(OdDbEntity& entity, const PlotStyle& style) {
    entity.assertWriteEnabled();
    ObjectAccess::plotStyleKind(entity) = static_cast<std::int32_t>(style.kind);
    ObjectAccess::plotStyle(entity).handle = style.style ? style.style.handle().value() : 0;
}

}  // namespace drawingdb
