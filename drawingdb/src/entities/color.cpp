#include "drawingdb/color.h"

#include <algorithm>
#include <array>

#include "base/number.h"
#include "base/text.h"

namespace {

constexpr int kByBlockIndex = 0;
constexpr int kByLayerIndex = 256;
constexpr int kNoneIndex = 257;
constexpr int kForegroundIndex = 7;

constexpr std::uint32_t packed(int red, int green, int blue) {
    return static_cast<std::uint32_t>(red << 16 | green << 8 | blue);
}

// The palette: nine fixed colours; then 24 hues of 15 degrees with ten shades each, alternately full and half-way to
// grey at five brightnesses; then six greys in even steps up to white.
constexpr std::array<std::uint32_t, 256> makePalette() {
    constexpr std::array<std::uint32_t, 10> fixed = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                                     0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
    constexpr std::array<int, 5> brightness = {100, 65, 50, 30, 15};  // per cent

    // Of a component, in quarters, at a hue counted from where the component is full.
    const auto quarters = [](int hue) {
        hue = (hue + 24) % 24;
        const int distance = std::min(hue, 24 - hue);
        return std::clamp(8 - distance, 0, 4);
    };
    std::array<std::uint32_t, 256> palette{};
    for (std::size_t i = 0; i < fixed.size(); ++i) palette[i] = fixed[i];
    for (int i = 10; i < 250; ++i) {
        const int hue = (i - 10) / 10;
        const int shade = i % 10;
        const auto component = [&](int full) {
            const int q = quarters(hue - full);
            const int eighths = shade % 2 == 0 ? 2 * q : 4 + q;
            return 255 * brightness[static_cast<std::size_t>(shade / 2)] * eighths / 800;
        };
        palette[static_cast<std::size_t>(i)] = packed(component(0), component(8), component(16));
    }
    for (int i = 250; i < 256; ++i) {
        const int grey = 255 * (20 + 16 * (i - 250)) / 100;
        palette[static_cast<std::size_t>(i)] = packed(grey, grey, grey);
    }
    return palette;
}

constexpr std::array<std::uint32_t, 256> kPalette = makePalette();

constexpr std::array<std::wstring_view, 7> kColorNames = {L"red",  L"yellow",  L"green", L"cyan",
                                                          L"blue", L"magenta", L"white"};

int square(int number) { return number * number; }

std::optional<int> wholeNumber(std::wstring_view text, int low, int high) {
    const auto number = base::parseInteger(text);
    if (!number || *number < low || *number > high) return std::nullopt;
    return static_cast<int>(*number);
}

}  // namespace

std::uint32_t OdCmEntityColor::lookUpRGB(std::uint8_t index) { return kPalette[index]; }

std::uint8_t OdCmEntityColor::lookUpIndex(std::uint32_t rgb) {
    int best = 0;
    int bestDistance = 1 << 30;
    for (int i = 1; i < 256; ++i) {
        const std::uint32_t entry = kPalette[static_cast<std::size_t>(i)];
        int distance = 0;
        for (int shift : {0, 8, 16})
            distance += square(static_cast<int>(entry >> shift & 0xFF) - static_cast<int>(rgb >> shift & 0xFF));
        if (distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return static_cast<std::uint8_t>(best);
}

OdCmColor OdCmColor::fromMethod(ColorMethod method) {
    OdCmColor color;
    color.method_ = method;
    if (method == OdCmEntityColor::kByIndex) color.index_ = kForegroundIndex;
    return color;
}

OdCmColor OdCmColor::fromIndex(int index) {
    if (index < 0 && index > -kByLayerIndex) index = -index;
    if (index == kByBlockIndex) return fromMethod(OdCmEntityColor::kByBlock);
    if (index == kNoneIndex) return fromMethod(OdCmEntityColor::kNone);
    OdCmColor color;
    if (index > 0 && index < kByLayerIndex) {
        color.method_ = OdCmEntityColor::kByIndex;
        color.index_ = static_cast<std::uint8_t>(index);
    }
    return color;
}

OdCmColor OdCmColor::fromRgb(std::uint32_t rgb) {
    OdCmColor color;
    color.method_ = OdCmEntityColor::kByRgb;
    color.rgb_ = rgb & 0xFFFFFF;
    return color;
}

OdCmColor OdCmColor::fromRgb(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    return fromRgb(packed(red, green, blue));
}

OdCmColor OdCmColor::fromDxf(int group62, std::int32_t group420, std::wstring_view group430) {
    OdCmColor color = fromIndex(group62);
    if (group420 < 0 || group420 > 0xFFFFFF) return color;
    const std::uint8_t standIn = color.isByIndex() ? color.index_ : std::uint8_t{0};
    color = fromRgb(static_cast<std::uint32_t>(group420));
    color.index_ = standIn;
    color.book_ = group430;
    return color;
}

std::optional<OdCmColor> OdCmColor::fromDisplayName(std::wstring_view name) {
    name = base::trimmed(name);
    for (const ColorMethod method :
         {OdCmEntityColor::kByLayer, OdCmEntityColor::kByBlock, OdCmEntityColor::kForeground, OdCmEntityColor::kNone})
        if (base::equalsNoCase(name, fromMethod(method).colorNameForDisplay())) return fromMethod(method);
    if (base::equalsNoCase(name, L"By Layer")) return fromMethod(OdCmEntityColor::kByLayer);
    if (base::equalsNoCase(name, L"By Block")) return fromMethod(OdCmEntityColor::kByBlock);
    for (std::size_t i = 0; i < kColorNames.size(); ++i)
        if (base::equalsNoCase(name, kColorNames[i])) return fromIndex(static_cast<int>(i) + 1);

    const auto parts = base::split(name, L',');
    if (parts.size() == 3) {
        const auto red = wholeNumber(parts[0], 0, 255);
        const auto green = wholeNumber(parts[1], 0, 255);
        const auto blue = wholeNumber(parts[2], 0, 255);
        if (!red || !green || !blue) return std::nullopt;
        return fromRgb(packed(*red, *green, *blue));
    }
    if (base::startsWithNoCase(name, L"color ")) name.remove_prefix(6);
    if (const auto index = wholeNumber(name, 1, 255)) return fromIndex(*index);
    return std::nullopt;
}

int OdCmColor::colorIndex() const {
    switch (method_) {
        case OdCmEntityColor::kByLayer:
            return kByLayerIndex;
        case OdCmEntityColor::kByBlock:
            return kByBlockIndex;
        case OdCmEntityColor::kByRgb:
            return index_ != 0 ? index_ : OdCmEntityColor::lookUpIndex(rgb_);
        case OdCmEntityColor::kByIndex:
            return index_;
        case OdCmEntityColor::kForeground:
            return kForegroundIndex;
        case OdCmEntityColor::kNone:
            return kNoneIndex;
    }
    return kByLayerIndex;
}

std::uint32_t OdCmColor::rgb() const {
    switch (method_) {
        case OdCmEntityColor::kByRgb:
            return rgb_;
        case OdCmEntityColor::kByIndex:
            return OdCmEntityColor::lookUpRGB(index_);
        case OdCmEntityColor::kNone:
            return 0;
        case OdCmEntityColor::kByLayer:
        case OdCmEntityColor::kByBlock:
        case OdCmEntityColor::kForeground:
            break;
    }
    return 0xFFFFFF;
}

void OdCmColor::setBookName(std::wstring_view name) {
    if (isByRgb()) book_ = name;
}

std::wstring OdCmColor::colorNameForDisplay() const {
    switch (method_) {
        case OdCmEntityColor::kByLayer:
            return L"ByLayer";
        case OdCmEntityColor::kByBlock:
            return L"ByBlock";
        case OdCmEntityColor::kForeground:
            return L"Foreground";
        case OdCmEntityColor::kNone:
            return L"None";
        case OdCmEntityColor::kByIndex:
            return index_ >= 1 && index_ <= kColorNames.size() ? std::wstring(kColorNames[index_ - 1U])
                                                               : L"color " + std::to_wstring(index_);
        case OdCmEntityColor::kByRgb:
            break;
    }
    if (!book_.empty()) {
        // What stands before the first "$" is the book.
        const auto name = book_.find(L'$') + 1;
        return name < book_.size() ? book_.substr(name) : book_;
    }
    return std::to_wstring(red()) + L',' + std::to_wstring(green()) + L',' + std::to_wstring(blue());
}

bool OdCmColor::operator==(const OdCmColor& other) const {
    return method_ == other.method_ && rgb_ == other.rgb_ && book_ == other.book_ &&
           (method_ != OdCmEntityColor::kByIndex || index_ == other.index_);
}
