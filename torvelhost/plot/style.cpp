// The looks of entities: what comes from layers and from the references that hold them, and the linetypes.
#include "torvelhost/plot/style.h"

#include <algorithm>

#include "base/text.h"
#include "drawingdb/layer.h"
#include "drawingdb/symbol_table.h"
#include "torvelhost/plot/groups.h"

namespace host {
namespace {

constexpr int kByLayerWeight = -1, kByBlockWeight = -2;
constexpr int kDefaultWeight = 25;  // hundredths of a millimetre

Source inReference(const Source& source, const Source& ofReference, std::uint32_t layerOfReference) {
    if (source.kind == Source::kOfBlock) return ofReference;
    if (source.kind == Source::kOfLayer && source.layer == 0) return {Source::kOfLayer, layerOfReference, 0};
    return source;
}

}  // namespace

Style inReference(const Style& entity, const Style& reference) {
    Style style = entity;
    if (entity.layer == 0) style.layer = reference.layer;
    style.color = inReference(entity.color, reference.color, reference.layer);
    style.weight = inReference(entity.weight, reference.weight, reference.layer);
    style.linetype = inReference(entity.linetype, reference.linetype, reference.layer);
    return style;
}

// Colour 7 is the paper's opposite.
std::uint32_t Styles::onPaper(const OdCmColor& color) const {
    if (inks_.mono || color.colorMethod() == OdCmEntityColor::kForeground ||
        (color.isByIndex() && color.colorIndex() == 7))
        return inks_.foreground;
    return color.rgb();
}

Styles::Styles(OdDbDatabase& database, const Inks& inks) : database_(&database), inks_(inks) {
    linetypes_.emplace_back();
    linetypeIndices_.emplace(L"CONTINUOUS", 0);
    layers_.push_back({.color = inks.foreground});
    const OdDbObjectId zero = database.findLayer(L"0");
    if (zero) layerIndices_.emplace(zero, 0);
    if (const auto table = database.layerTableId().openIf<OdDbSymbolTable>()) {
        for (OdDbObjectId id : table->records()) {
            const auto record = id.openIf<OdDbLayerTableRecord>();
            if (!record) continue;
            Layer layer;
            layer.color = onPaper(record->color());
            layer.weight = record->lineweight();
            layer.linetype = linetypeIndex(record->linetype());
            layer.off = record->isOff();
            layer.frozen = record->isFrozen();
            layer.plotted = record->isPlottable() && !base::equalsNoCase(record->name(), L"DEFPOINTS");
            if (id == zero) {
                layers_[0] = layer;
            } else {
                layerIndices_.emplace(id, static_cast<std::uint32_t>(layers_.size()));
                layers_.push_back(layer);
            }
        }
    }
    // What stands on a layer that the drawing does not have looks as on a new one.
    layerIndices_.emplace(OdDbObjectId(), static_cast<std::uint32_t>(layers_.size()));
    layers_.push_back({.color = inks.foreground});
}

std::uint32_t Styles::layerIndex(OdDbObjectId layer) {
    const auto found = layerIndices_.find(layer);
    return found != layerIndices_.end() ? found->second : layerIndices_.at(OdDbObjectId());
}

std::uint32_t Styles::linetypeIndex(const OdString& name) {
    const auto [entry, isNew] = linetypeIndices_.try_emplace(base::toUpper(name), 0);
    if (!isNew) return entry->second;
    std::vector<double> dashes;
    if (const auto record = database_->findLinetype(name).open()) {
        for (const PlotGroup& group : groupsOf(*record))
            if (group.code == 49) dashes.push_back(group.real);
    }
    const bool anyGap = std::any_of(dashes.begin(), dashes.end(), [](double length) { return length < 0; });
    if (anyGap) {
        entry->second = static_cast<std::uint32_t>(linetypes_.size());
        linetypes_.push_back(std::move(dashes));
    }
    return entry->second;
}

Style Styles::styleOf(const OdDbEntity& entity) {
    Style style;
    style.layer = layerIndex(entity.layerId());
    style = colored(style, entity.color());

    const int weight = entity.lineweight();
    style.weight = weight == kByLayerWeight   ? Source{Source::kOfLayer, style.layer, 0}
                   : weight == kByBlockWeight ? Source{Source::kOfBlock, 0, 0}
                                              : Source{Source::kFixed, 0, weight};
    const OdString linetype = entity.linetype();
    if (linetype.empty() || base::equalsNoCase(linetype, L"ByLayer"))
        style.linetype = {Source::kOfLayer, style.layer, 0};
    else if (base::equalsNoCase(linetype, L"ByBlock"))
        style.linetype = {Source::kOfBlock, 0, 0};
    else
        style.linetype = {Source::kFixed, 0, static_cast<std::int32_t>(linetypeIndex(linetype))};
    style.linetypeScale = entity.linetypeScale();
    return style;
}

Style Styles::colored(const Style& style, const OdCmColor& color) const {
    Style changed = style;
    if (color.isByLayer())
        changed.color = {Source::kOfLayer, style.layer, 0};
    else if (color.isByBlock())
        changed.color = {Source::kOfBlock, 0, 0};
    else
        changed.color = {Source::kFixed, 0, static_cast<std::int32_t>(onPaper(color))};
    return changed;
}

// By block, outside all blocks: the foreground, the default weight, continuous.
Look Styles::lookOf(const Style& style) const {
    Look look{.color = inks_.foreground};
    if (style.color.kind == Source::kFixed)
        look.color = static_cast<std::uint32_t>(style.color.value);
    else if (style.color.kind == Source::kOfLayer)
        look.color = layers_[style.color.layer].color;

    int weight = -3;
    if (style.weight.kind == Source::kFixed)
        weight = style.weight.value;
    else if (style.weight.kind == Source::kOfLayer)
        weight = layers_[style.weight.layer].weight;
    if (weight < 0) weight = kDefaultWeight;
    look.width = std::max(1.0, weight * inks_.pixelsPerMillimetre / 100);

    std::uint32_t linetype = 0;
    if (style.linetype.kind == Source::kFixed)
        linetype = static_cast<std::uint32_t>(style.linetype.value);
    else if (style.linetype.kind == Source::kOfLayer)
        linetype = layers_[style.linetype.layer].linetype;
    if (linetype != 0) look.dashes = &linetypes_[linetype];
    look.linetypeScale = style.linetypeScale;
    return look;
}

void Styles::freezeHere(const std::vector<OdDbObjectId>& layers) {
    for (Layer& layer : layers_) layer.frozenHere = false;
    for (OdDbObjectId id : layers) {
        const auto found = layerIndices_.find(id);
        if (found != layerIndices_.end()) layers_[found->second].frozenHere = true;
    }
}

}  // namespace host
