// How entities look: layers, colours, linetypes and lineweights, also inside blocks.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "drawingdb/color.h"
#include "drawingdb/database.h"
#include "drawingdb/entity.h"

namespace host {

/// Where a property comes from.
struct Source {
    enum Kind : std::uint8_t { kFixed, kOfLayer, kOfBlock };
    Kind kind = kFixed;
    std::uint32_t layer = 0;  // kOfLayer
    std::int32_t value = 0;   // kFixed

    bool operator==(const Source&) const = default;
};

/// The look of an entity before it is known where its block is inserted. Layer 0 inside a block is the reference's.
struct Style {
    std::uint32_t layer = 0;
    Source color, weight, linetype;
    double linetypeScale = 1.0;

    bool operator==(const Style&) const = default;
};

/// What an entity in a block looks like in one of the block's references.
Style inReference(const Style& entity, const Style& reference);

/// What to draw with. Dash lengths are of the linetype: positive a dash, negative a gap, 0 a dot.
struct Look {
    std::uint32_t color = 0;
    double width = 1.0;  // pixels
    const std::vector<double>* dashes = nullptr;
    double linetypeScale = 1.0;
};

/// How entities stand out: as they are, under the cursor, chosen.
enum class Emphasis : std::uint8_t { kPlain, kHover, kSelected };

/// What a picture makes of colours and lineweights.
struct Inks {
    std::uint32_t foreground = 0x000000, background = 0xFFFFFF;
    bool mono = false;  // everything is drawn in the foreground's colour
    double pixelsPerMillimetre = 4.0;

    static Inks dark() { return {0xFFFFFF, 0x1E1E1E}; }
};

/// The layers and linetypes of a drawing.
class Styles {
  public:
    static constexpr std::uint32_t kBackground = Inks().background;

    explicit Styles(OdDbDatabase& database, const Inks& inks = {});
    const Inks& inks() const { return inks_; }
    OdDbDatabase& database() const { return *database_; }

    Style styleOf(const OdDbEntity& entity);
    /// The rest as `style` has it.
    Style colored(const Style& style, const OdCmColor& color) const;
    Look lookOf(const Style& style) const;

    bool isFrozen(const Style& style) const { return layers_[style.layer].frozen || layers_[style.layer].frozenHere; }
    bool isHidden(const Style& style) const { return isFrozen(style) || layers_[style.layer].off; }
    /// Some layers are seen when one draws, but never on paper: the points that dimensions hang on.
    bool isPlotted(const Style& style) const { return layers_[style.layer].plotted; }
    /// Layers that are frozen in the viewport that is being drawn.
    void freezeHere(const std::vector<OdDbObjectId>& layers);

  private:
    struct Layer {
        std::uint32_t color = 0;
        int weight = -3;
        std::uint32_t linetype = 0;
        bool off = false, frozen = false, plotted = true, frozenHere = false;
    };
    std::uint32_t layerIndex(OdDbObjectId layer);
    std::uint32_t linetypeIndex(const OdString& name);

    std::uint32_t onPaper(const OdCmColor& color) const;

    OdDbDatabase* database_;
    Inks inks_;
    std::vector<Layer> layers_;  // 0: layer "0"
    std::unordered_map<OdDbObjectId, std::uint32_t> layerIndices_;
    std::deque<std::vector<double>> linetypes_;  // 0: continuous; looks point at them
    std::unordered_map<std::wstring, std::uint32_t> linetypeIndices_;
};

}  // namespace host
