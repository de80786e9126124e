// Colours of entities and layers, and the standard palette of 255 colour numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "drawingdb/api.h"

/// What a colour is given by, and the palette.
struct OdCmEntityColor {
    /// The values are those of the method byte in stored colours.
    enum ColorMethod : std::uint8_t {
        kByLayer = 192,
        kByBlock = 193,
        kByRgb = 194,
        kByIndex = 195,
        kForeground = 197,
        kNone = 200,
    };

    /// 0xRRGGBB of a colour number; 0 (by block) gives black, 7 white.
    DRAWINGDB_API static std::uint32_t lookUpRGB(std::uint8_t index);
    /// The colour number, 1 to 255, whose palette entry is nearest to 0xRRGGBB; the lowest of several.
    DRAWINGDB_API static std::uint8_t lookUpIndex(std::uint32_t rgb);
};

/// A colour: by layer (a new one), by block, a colour number, a true colour with or without a colour book's name, the
/// foreground, or none.
///
/// In a DXF file a colour stands in three groups: 62 the number (0 by block, 256 by layer), 420 the true colour, 430
/// the name in a colour book. A true colour keeps the number it was read with, which older programs show in its place.
class OdCmColor {
  public:
    using ColorMethod = OdCmEntityColor::ColorMethod;

    OdCmColor() = default;
    DRAWINGDB_API static OdCmColor fromMethod(ColorMethod method);
    /// 0 by block, 1 to 255 a colour number, 256 by layer, 257 none. A negative number (a layer that is off) counts by
    /// its size; any other is by layer.
    DRAWINGDB_API static OdCmColor fromIndex(int index);
    DRAWINGDB_API static OdCmColor fromRgb(std::uint32_t rgb);
    DRAWINGDB_API static OdCmColor fromRgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue);
    /// The three groups; a true colour outside 0 to 0xFFFFFF (-1: the group is missing) leaves the number in force.
    DRAWINGDB_API static OdCmColor fromDxf(int group62, std::int32_t group420, std::wstring_view group430 = {});
    /// Reads what colorNameForDisplay writes, a bare number, and by-layer and by-block with a blank in between; case
    /// and blanks around do not matter. Nothing when the text is no colour.
    DRAWINGDB_API static std::optional<OdCmColor> fromDisplayName(std::wstring_view name);

    ColorMethod colorMethod() const { return method_; }
    bool isByLayer() const { return method_ == OdCmEntityColor::kByLayer; }
    bool isByBlock() const { return method_ == OdCmEntityColor::kByBlock; }
    bool isByIndex() const { return method_ == OdCmEntityColor::kByIndex; }
    bool isByRgb() const { return method_ == OdCmEntityColor::kByRgb; }

    /// As in group 62: for a true colour the number that stands in for it, for the foreground 7.
    DRAWINGDB_API int colorIndex() const;
    /// As in group 420: 0xRRGGBB, or -1 when this is no true colour.
    std::int32_t dxfTrueColor() const { return isByRgb() ? static_cast<std::int32_t>(rgb_) : -1; }
    /// As in group 430: "BOOK$NAME", or empty.
    const std::wstring& bookName() const { return book_; }
    /// What it looks like, 0xRRGGBB: by palette for a number. By layer, by block and the foreground give white, for
    /// none of them is known here; none gives black.
    DRAWINGDB_API std::uint32_t rgb() const;
    std::uint8_t red() const { return static_cast<std::uint8_t>(rgb() >> 16); }
    std::uint8_t green() const { return static_cast<std::uint8_t>(rgb() >> 8); }
    std::uint8_t blue() const { return static_cast<std::uint8_t>(rgb()); }

    void setColorMethod(ColorMethod method) { *this = fromMethod(method); }
    void setColorIndex(int index) { *this = fromIndex(index); }
    void setRgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue) { *this = fromRgb(red, green, blue); }
    /// Names a true colour; ignored for any other.
    DRAWINGDB_API void setBookName(std::wstring_view name);

    /// "ByLayer", "ByBlock", "Foreground", "None", "red" to "white" for the numbers 1 to 7, "color 30" for others,
    /// "255,0,0" for a true colour, and the name alone for one from a colour book.
    DRAWINGDB_API std::wstring colorNameForDisplay() const;

    /// The number that stands in for a true colour does not count.
    DRAWINGDB_API bool operator==(const OdCmColor& other) const;

  private:
    ColorMethod method_ = OdCmEntityColor::kByLayer;
    std::uint8_t index_ = 0;  // of a colour number, or standing in for a true colour; 0 in a true colour: not known yet
    std::uint32_t rgb_ = 0;   // of a true colour
    std::wstring book_;       // of a true colour
};
